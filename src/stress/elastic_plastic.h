// Design stress intensity at temperature and the simplified elastic-plastic factor Ke.
#pragma once

#include "study/definition.h"

namespace zentor {

// Design stress intensity Sm, in the study's stress unit: linear between the points of the curve, constant
// beyond its ends. 0 for a curve without points.
double SmAtTemperature(const SmTCurve& curve, double temperature);

// Ke from the range of the linearised primary plus secondary stress `sn` and `sm` (same unit) and the
// material parameters m > 1, 0 < n < 1: 1 up to 3 sm, 1 / n from 3 m sm on, linear between. Source: ASME
// Boiler and Pressure Vessel Code, Section III, NB-3228.5.
double ElasticPlasticFactor(double sn, double sm, double m, double n);

// Whether Sm never rises with temperature; Ke is applied only then. True for fewer than two points.
bool IsNonIncreasing(const SmTCurve& curve);

}  // namespace zentor
