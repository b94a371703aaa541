// Any value in any field of the definition ends in a result, a stop or a fault, never in a crash or a hang.
#include <limits>

#include "study_input_fixture.h"

namespace zentor::test {
namespace {

class HostileDefinition : public StudyInput {};

TEST_F(HostileDefinition, EveryFieldOfEveryKindOfEntity) {
  SetElasticPlastic();
  SetLocation(kLocation, 2, 1, 11);
  Store(kLocation, 1, true, true, true);
  const TableBuilder sound = ftc;
  Read();
  int faults = 0;
  for (const int entity : {1, 21, 60, 61, 97, 98, 103, kLocationEntity, 604 + (kLocation - 1) * 40 + 1}) {
    for (const int field : {2, 3, 4, 5, 6, 7, 8, 15, 18, 28, 41}) {
      for (const int value : {-1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        ftc = sound;
        ftc.SetInt(entity, field, value);
        WriteBytes(Path(".FTC"), ftc.Bytes());
        if (ReadFiles() == Outcome::kFault) ++faults;
      }
    }
  }
  EXPECT_GT(faults, 0);
}

}  // namespace
}  // namespace zentor::test
