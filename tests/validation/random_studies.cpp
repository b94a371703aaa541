#include "validation/random_studies.h"

#include <algorithm>
#include <utility>

namespace zentor::validation {

namespace {

constexpr int kSide = 3;  // squares along a side
constexpr std::pair<std::size_t, std::size_t> kPlaces[6] = {{0, 0}, {1, 1}, {2, 2}, {0, 1}, {0, 2}, {1, 2}};

StudyModel Squares() {
  StudyModel model;
  for (int node = 1; node <= (kSide + 1) * (kSide + 1); ++node) model.nodes.push_back({node, {}, 0});
  for (int e = 0; e < kSide * kSide; ++e) {
    const int corner = e / kSide * (kSide + 1) + e % kSide + 1;
    model.elements.push_back({e + 1, 42, 1, 1, 4, static_cast<std::uint32_t>(4 * e)});
    model.element_nodes.insert(model.element_nodes.end(),
                               {corner, corner + 1, corner + kSide + 2, corner + kSide + 1});
  }
  return model;
}

}  // namespace

// The stresses of a study are of one kind: general, plane in some of its cases, or everywhere along one
// oblique direction (bars) or equal in all directions across it, both with a repeated principal value.
StudyDefinition RandomStudies::WithStresses(int cases) {
  enum { kGeneral, kPlane, kAlong, kAcross };
  StudyDefinition study;
  study.model = Squares();
  const int kind = Pick(kGeneral, kAcross);
  const std::array<double, 3> n = Turn()[0];
  for (int number = 1; number <= cases; ++number) {
    StressField field;
    for (std::size_t i = 0; i < study.model.element_nodes.size(); ++i) {
      const double size = Normal();
      for (std::size_t c = 0; c < 6; ++c) {
        const double along = n[kPlaces[c].first] * n[kPlaces[c].second];
        double value = kind == kPlane && c > 3 && number % 2 == 0 ? 0.0 : Normal();
        if (kind == kAlong) value = size * along;
        if (kind == kAcross) value = size * ((c < 3 ? 1.0 : 0.0) - along);
        field.values.push_back(static_cast<float>(value));
      }
    }
    study.stress_cases.push_back({"case", number, {field}, {}});
  }
  study.materials = {{1, 2e5F, 2000.0F, 3000.0F}};
  study.options.alternating_stress_type = Pick(0, 2);
  study.options.mean_stress_correction = Pick(0, 3);
  study.options.strength_reduction_factor = Pick(0, 1) == 0 ? 1.0F : Real(0.5F, 2.0F);
  for (int c = Pick(1, 3); c > 0; --c) {
    const float top = Real(1e5F, 2e5F);
    study.sn_curves.push_back({1,
                               1.0F - static_cast<float>(c),
                               0,
                               {{1, top}, {1e4F, top / 200}, {1e6F, top / 2000}, {1e9F, top / 1e5F}}});
  }
  return study;
}

void RandomStudies::AddHistories(StudyDefinition& study) {
  study.options.load_amplitude_type = 1;
  study.options.alternating_stress_type = 1;
  study.options.shared_history = Pick(0, 1) == 0;
  study.options.range_bins = Pick(20, 60);
  // With an even number the mean of the largest cycle would lie on the edge of two bins, where rounding
  // decides.
  study.options.mean_bins = 2 * Pick(10, 30) + 1;
  for (AuthoredEvent& event : study.events) {
    event.loadings = {{event.number, 1, 1, event.loadings[0].scale}};
    event.cycles = study.events[0].cycles;
    event.history = study.options.shared_history ? 1 : event.number;
    AuthoredHistory history{event.number, {}, {}};
    for (int point = 0; point < 60; ++point) {
      history.times.push_back(static_cast<float>(point));
      history.values.push_back(Normal() / 60.0F);
    }
    study.histories.push_back(history);
  }
}

StudyDefinition RandomStudies::Any() {
  const int cases = Pick(2, 5);
  StudyDefinition study = WithStresses(cases);
  study.options.event_interaction = Pick(0, 1);
  int loading = 0;
  for (int number = 1; number <= 4; ++number) {
    study.events.push_back({number, Pick(1, 5000), {}});
    for (int k = Pick(1, 3); k >= 0; --k) {
      const int stress_case = k == 0 && number == 1 ? kZeroStressCase : Pick(1, cases);
      study.events.back().loadings.push_back({++loading, stress_case, 1, Real(-2.0F, 2.0F)});
    }
  }
  if (Pick(0, 1) == 0) AddHistories(study);
  return study;
}

// Multiples 1, -3, 9, -27, 81 and 0 of one state: all their differences are at least 1.2 % apart.
StudyDefinition RandomStudies::SeparateRanges() {
  StudyDefinition study = WithStresses(1);
  study.options.mean_stress_correction = 0;
  study.options.infinite_life = 1e30F;  // the halves of an event have no range between them
  study.sn_curves.resize(1);
  for (int number = 1; number <= 3; ++number) study.events.push_back({number, Pick(2, 5000), {}});
  float scale = 1.0F;
  for (int k = 1; k <= 6; ++k, scale *= -3.0F) {
    AuthoredEvent& event = study.events[static_cast<std::size_t>(Pick(0, 2))];
    event.loadings.push_back({k, k == 6 ? kZeroStressCase : 1, 1, scale});
  }
  return study;
}

// By a random unit quaternion.
Matrix RandomStudies::Turn() {
  double w = Normal(), x = Normal(), y = Normal(), z = Normal();
  const double length = std::sqrt(w * w + x * x + y * y + z * z);
  w /= length, x /= length, y /= length, z /= length;
  return {{{1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w)},
           {2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w)},
           {2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)}}};
}

StudyDefinition InAxes(StudyDefinition study, const Matrix& axes) {
  for (StressCase& stress_case : study.stress_cases) {
    std::vector<float>& values = stress_case.fields[0].values;
    for (auto at = values.begin(); at != values.end(); at += 6) {
      std::array<double, 6> turned{};
      for (std::size_t c = 0; c < 6; ++c) {
        const auto& u = axes[kPlaces[c].first];
        const auto& v = axes[kPlaces[c].second];
        for (std::size_t d = 0; d < 6; ++d) {
          const auto [k, l] = kPlaces[d];
          turned[c] +=
              at[static_cast<std::ptrdiff_t>(d)] * (k == l ? u[k] * v[k] : u[k] * v[l] + u[l] * v[k]);
        }
      }
      std::transform(turned.begin(), turned.end(), at,
                     [](double value) { return static_cast<float>(value); });
    }
  }
  return study;
}

StudyDefinition InUnits(StudyDefinition study, float factor) {
  for (StressCase& stress_case : study.stress_cases) {
    for (float& value : stress_case.fields[0].values) value *= factor;
  }
  for (AuthoredMaterial& material : study.materials) {
    for (float* value : {&material.modulus, &material.yield_strength, &material.ultimate_strength})
      *value *= factor;
  }
  for (AuthoredSnCurve& curve : study.sn_curves) {
    for (auto& point : curve.points) point[1] *= factor;
  }
  return study;
}

StudyDefinition WithSplitEvents(StudyDefinition study, RandomStudies& random) {
  const std::vector<AuthoredEvent> whole = std::exchange(study.events, {});
  int loading = 0;
  for (const AuthoredEvent& event : whole) {
    const int part = random.Pick(0, event.cycles);
    for (const int cycles : {part, event.cycles - part}) {
      study.events.push_back({static_cast<int>(study.events.size()) + 1, cycles, event.loadings});
      for (AuthoredLoading& copy : study.events.back().loadings) copy.number = ++loading;
    }
  }
  return study;
}

int NewNode(const StudyDefinition& study, int node) {
  return 3 * (static_cast<int>(study.model.nodes.size()) + 1 - node);
}

StudyDefinition Renumbered(StudyDefinition study) {
  for (AuthoredNode& node : study.model.nodes) node.number *= 3;
  for (std::int32_t& node : study.model.element_nodes) node = NewNode(study, node);
  // Their elements the other way round, and so their corners: all have four.
  std::reverse(study.model.element_nodes.begin(), study.model.element_nodes.end());
  const int last_case = static_cast<int>(study.stress_cases.size()) + 1;
  for (StressCase& stress_case : study.stress_cases) {
    stress_case.number = last_case - stress_case.number;
    std::vector<float>& values = stress_case.fields[0].values;
    std::reverse(values.begin(), values.end());
    for (auto at = values.begin(); at != values.end(); at += 6) std::reverse(at, at + 6);
  }
  std::reverse(study.stress_cases.begin(), study.stress_cases.end());
  for (AuthoredEvent& event : study.events) {
    for (AuthoredLoading& loading : event.loadings) {
      if (loading.stress_case != kZeroStressCase) loading.stress_case = last_case - loading.stress_case;
    }
  }
  return study;
}

}  // namespace zentor::validation
