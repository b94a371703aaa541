// Whole runs at the limits of a study and of its files, with results worked by hand.
#include <cmath>
#include <fstream>

#include "support/study_run.h"

namespace zentor {
namespace {

using test::AsReal;
using test::RunEnd;

class LimitRun : public test::StudyRun {
 protected:
  // Usage factors of nodes 1, 2, ... of a run of all nodes.
  void ExpectUsage(const std::vector<double>& expected) {
    ASSERT_EQ(Run(), RunEnd::kComplete);
    const std::vector<std::int32_t> words = Words(".FTR");
    ASSERT_GE(words.size(), 10 * (expected.size() + 1));
    for (std::size_t node = 1; node <= expected.size(); ++node) {
      EXPECT_NEAR(AsReal(words[10 * node + 2]), expected[node - 1], 1e-6 * expected[node - 1]) << node;
    }
  }
};

// Alternating stresses at the curve's 1000 cycles, half way to its 2000 cycles and below its last point, for
// a material of twice its modulus.
TEST_F(LimitRun, BuiltInCurvesOfBothSteels) {
  struct Curve {
    int option, interpolation;
    float modulus;
    double at_1000, at_2000;
  };
  for (const Curve& curve : {Curve{-1, 0, 6e4F, 83, 64},
                             {-2, 0, 56600, 119, 97},
                             {-2, 1, 56600, 119, 97},
                             {-1, 2, 6e4F, 83, 64}}) {
    SCOPED_TRACE(curve.option * 10 - curve.interpolation);
    const bool log_stress = curve.interpolation == 0, log_cycles = curve.interpolation < 2;
    const double half_way =
        log_stress ? std::sqrt(curve.at_1000 * curve.at_2000) : (curve.at_1000 + curve.at_2000) / 2;
    const double salt[] = {curve.at_1000, half_way, 12.0, 0.0};
    MakeAllNodes(
        test::NodesUpTo(4), [&](int node) { return 2 * 2 * salt[node - 1]; }, 500);
    study.sn_curves.clear();
    study.materials = {{1, curve.modulus, 0.0F, 0.0F}};
    study.options.sn_curve_option = curve.option;
    study.options.sn_interpolation = curve.interpolation;
    Write();
    ExpectUsage({0.5, 500 / (log_cycles ? std::sqrt(2e6) : 1500.0), 500e-6, 500e-6});
  }
}

// Curves of one material for three stress ratios, read log-log, semi-log and linear; the cycles of the nodes
// have the ratios -1, 0, 0.5 and 0.25, half way between two curves.
TEST_F(LimitRun, CurvesOfMixedInterpolation) {
  const double lowest[] = {-400, 0, 200, 100};
  MakeAllNodes(
      test::NodesUpTo(4), [](int) { return 400.0; }, 100);
  study.stress_cases.push_back(test::Uniaxial(2, study.model, [&](int node) { return lowest[node - 1]; }));
  const std::string listed = folder.Path("listed");
  WriteStudy(study, listed, platform::NativeFileSystem());
  services.second_studies = {listed, listed};
  study.layout = StudyLayout::kMultiStudy;
  study.studies = services.second_studies;
  study.stress_cases.clear();
  study.events = {{1, 100, {{1, 1, 1, 1.0F}, {2, 2, 2, 1.0F}}}};
  study.sn_curves = {{1, -1.0F, 0, {{1e2F, 800}, {1e4F, 200}}},
                     {1, 0.0F, 1, {{1e2F, 300}, {1e4F, 100}}},
                     {1, 0.5F, 2, {{1e2F, 150}, {1e4F, 50}}}};
  Write();
  const double at_quarter =
      (std::pow(10.0, 3.5) + 100) / 2;  // semi-log 10^3.5 at 150; linear, above its first point
  ExpectUsage({0.1, 0.1, 100 / 5050.0, 100 / at_quarter});
}

// Event e has the loadings 2 e - 1 and 2 e, 40 in all, and e cycles of an alternating stress of 20 e.
TEST_F(LimitRun, TwentyEventsOfTwoLoadings) {
  MakeAllNodes(
      test::NodesUpTo(4), [](int node) { return 40.0 / node; }, 1);
  study.events.clear();
  double usage = 0;
  for (int e = 1; e <= 20; ++e) {
    study.events.push_back(
        {e, e, {{2 * e - 1, 1, 1, static_cast<float>(e)}, {2 * e, kZeroStressCase, 1, 1.0F}}});
    usage += e * (e < 5 ? 1e-6 : std::pow(20.0 * e, 3) / 1e12);
  }
  study.options.event_interaction = 1;
  Write();
  ExpectUsage({usage});
}

// The block of a load case is moved beyond 2, 4 and 8 GiB of a file with holes.
TEST_F(LimitRun, StressFileBeyondTwoGigabytes) {
  MakeAllNodes(
      test::NodesUpTo(4), [](int) { return 1000.0; }, 800);
  study.pointer_words = 2;
  for (const std::int64_t place :
       {std::int64_t{3} << 30U, (std::int64_t{5} << 30U) + 4, std::int64_t{9} << 30U}) {
    Write();
    const std::string bytes = test::ReadText(Path(".STE"));
    std::fstream file(Path(".STE"), std::ios::binary | std::ios::in | std::ios::out);
    std::int64_t block = 0;
    file.seekg(80).read(reinterpret_cast<char*>(&block), sizeof block);
    file.seekp(80).write(reinterpret_cast<const char*>(&place), sizeof place);
    const std::string moved = bytes.substr(static_cast<std::size_t>(block));
    file.seekp(place).write(moved.data(), static_cast<std::streamsize>(moved.size()));
    file.seekp(block).write(std::string(moved.size(), '\0').data(),
                            static_cast<std::streamsize>(moved.size()));
    file.close();
    ExpectUsage({0.1, 0.1, 0.1, 0.1});
  }
}

}  // namespace
}  // namespace zentor
