#include "fatigue/conditions.h"

#include <string>

#include "fatigue/history_messages.h"
#include "services/stop.h"

namespace zentor {
namespace {

constexpr const char* kAboveCurveQuestion =
    "Stresses in the model exceed the maximum stress value in an associated S-N curve.  \n"
    "If you would like to modify the S-N curves or other data and try again, press No to stop. \n"
    "Otherwise if you want to use the smallest number of cycles from the associated S-N\n"
    "curves and continue calculation press Yes.";

void AskAboveCurve(FatigueRun& run, int node) {
  SolverServices& services = run.context.services;
  if (services.AskUserText(kAboveCurveQuestion, BoxStyle::kYesNo) == Answer::kYes) {
    run.above_curve_answered = true;
    return;
  }
  services.NoteToBatchUser(std::string(kAboveCurveQuestion) + " (node " + std::to_string(node) + ")");
  StopStatement();
}

}  // namespace

void ActOnCondition(FatigueRun& run, LocationCondition condition, int argument, int node, int number) {
  SolverServices& services = run.context.services;
  switch (condition) {
    case LocationCondition::kNone:
      return;
    case LocationCondition::kAboveCurve:
      return AskAboveCurve(run, node);
    case LocationCondition::kNoMaterialSet:
      StopWithNumber(services, 9031, number);
    case LocationCondition::kNoCurveInSet:
      StopWithNumber(services, 9032, argument);
    case LocationCondition::kNoCurveForRatio: {
      run.context.listing.ListDirected("S-N curves are not defined properly");
      StopWithNumber(services, 9033, number);
    }
    case LocationCondition::kNoYieldStrength:
      StopWithNumber(services, 9058, number);
    case LocationCondition::kNoUltimateStrength:
      StopWithNumber(services, 9059, number);
    case LocationCondition::kHistoryConstant:
      run.lost.Warn(services);  // a history whose stresses were lost is constant too
      StopWithNumberAndBeep(services, message::kHistoryConstant, node);
    case LocationCondition::kFirstReversalsEqual:
      StopWithNumberAndBeep(services, message::kFirstReversalsEqual, node);
  }
}

bool ArisesBeforeLookup(LocationCondition condition) {
  switch (condition) {
    case LocationCondition::kNoYieldStrength:
    case LocationCondition::kNoUltimateStrength:
    case LocationCondition::kHistoryConstant:
    case LocationCondition::kFirstReversalsEqual:
      return true;
    default:
      return false;
  }
}

}  // namespace zentor
