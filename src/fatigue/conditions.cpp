#include "fatigue/conditions.h"

#include <array>
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

[[noreturn]] void StopWithNumber(FatigueRun& run, int message, int number) {
  const std::array<float, 1> arguments = {static_cast<float>(number)};
  StopWithMessage(run.context.services, message, arguments);
}

}  // namespace

void ActOnCondition(FatigueRun& run, LocationCondition condition, int argument, int node, int number) {
  switch (condition) {
    case LocationCondition::kNone:
      return;
    case LocationCondition::kAboveCurve:
      return AskAboveCurve(run, node);
    case LocationCondition::kNoMaterialSet:
      StopWithNumber(run, 9031, number);
    case LocationCondition::kNoCurveInSet:
      StopWithNumber(run, 9032, argument);
    case LocationCondition::kNoCurveForRatio: {
      run.context.listing.ListDirected("S-N curves are not defined properly");
      StopWithNumber(run, 9033, number);
    }
    case LocationCondition::kNoYieldStrength:
      StopWithNumber(run, 9058, number);
    case LocationCondition::kNoUltimateStrength:
      StopWithNumber(run, 9059, number);
    case LocationCondition::kHistoryConstant:
      StopWithNumberAndBeep(run.context.services, message::kHistoryConstant, node);
    case LocationCondition::kFirstReversalsEqual:
      StopWithNumberAndBeep(run.context.services, message::kFirstReversalsEqual, node);
  }
}

}  // namespace zentor
