#include "validation/random_studies.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <span>

#include "validation/whole_run.h"

namespace zentor::validation {

namespace {

constexpr int kSide = 3;  // squares along a side

StudyModel Squares() {
  StudyModel model;
  for (int y = 0; y <= kSide; ++y) {
    for (int x = 0; x <= kSide; ++x) {
      model.nodes.push_back(
          {y * (kSide + 1) + x + 1, {static_cast<float>(x), static_cast<float>(y), 0.0F}, 0});
    }
  }
  for (int e = 0; e < kSide * kSide; ++e) {
    const int corner = e / kSide * (kSide + 1) + e % kSide + 1;
    model.elements.push_back({e + 1, 42, 1, 1, 4, static_cast<std::uint32_t>(4 * e)});
    model.element_nodes.insert(model.element_nodes.end(),
                               {corner, corner + 1, corner + kSide + 2, corner + kSide + 1});
  }
  return model;
}

Matrix Product(const Matrix& a, const Matrix& b) {
  Matrix product{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t k = 0; k < 3; ++k) product[i][j] += a[i][k] * b[k][j];
    }
  }
  return product;
}
Matrix Transposed(const Matrix& a) {
  Matrix transposed{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) transposed[i][j] = a[j][i];
  }
  return transposed;
}

}  // namespace

StudyDefinition RandomStudies::WithStresses(int cases) {
  StudyDefinition study;
  study.model = Squares();
  for (int number = 1; number <= cases; ++number) {
    StressField field;
    const bool plane = Pick(0, 2) == 0;
    for (std::size_t i = 0; i < study.model.element_nodes.size(); ++i) {
      for (int c = 0; c < 6; ++c) field.values.push_back(plane && c > 3 ? 0.0F : Normal());
    }
    study.stress_cases.push_back({"case", number, {field}, {}});
  }
  study.materials = {{1, 2e5F, 2000.0F, 3000.0F}};
  study.options.alternating_stress_type = Pick(0, 2);
  study.options.mean_stress_correction = Pick(0, 3);
  study.options.strength_reduction_factor = Real(0.5F, 2.0F);
  AddCurves(study);
  return study;
}

void RandomStudies::AddCurves(StudyDefinition& study) {
  const int curves = Pick(1, 3);
  for (int c = 0; c < curves; ++c) {
    const float top = 1e5F * Real(1.0F, 2.0F);
    study.sn_curves.push_back({1,
                               static_cast<float>(c) - 1.0F,
                               0,
                               {{1, top}, {1e4F, top / 200}, {1e6F, top / 2000}, {1e9F, top / 1e5F}}});
  }
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
    event.loadings.resize(1);
    event.loadings[0].number = event.number;
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

StudyDefinition RandomStudies::ConstantAmplitude() {
  const int cases = Pick(2, 5);
  StudyDefinition study = WithStresses(cases);
  study.options.event_interaction = Pick(0, 1);
  int loading = 0;
  for (int number = 1; number <= 4; ++number) {
    AuthoredEvent event{number, Pick(1, 5000), {}};
    for (int k = Pick(1, 3); k >= 0; --k) {
      event.loadings.push_back(
          {++loading, k == 0 && number == 1 ? kZeroStressCase : Pick(1, cases), 1, Real(-2.0F, 2.0F)});
    }
    study.events.push_back(event);
  }
  return study;
}

StudyDefinition RandomStudies::Any() {
  StudyDefinition study = ConstantAmplitude();
  if (Pick(0, 1) != 0) return study;
  study.events[0].loadings[0].stress_case = 1;
  AddHistories(study);
  return study;
}

// Multiples 1, -3, 9, -27, 81 of one state: all differences of two of them, and they themselves, are at
// least 1.2 % apart.
StudyDefinition RandomStudies::SeparateRanges() {
  StudyDefinition study = WithStresses(1);
  study.options.mean_stress_correction = 0;
  study.options.infinite_life = 1e30F;  // the halves of an event have no range between them
  study.sn_curves.resize(1);
  for (int number = 1; number <= 3; ++number) study.events.push_back({number, Pick(2, 5000), {}});
  float scale = 0.05F;
  for (int k = 0; k < 6; ++k, scale *= -3.0F) {
    AuthoredEvent& event = study.events[static_cast<std::size_t>(Pick(0, 2))];
    event.loadings.push_back({k + 1, k == 5 ? kZeroStressCase : 1, 1, scale});
  }
  return study;
}

std::vector<int> RandomStudies::NewNumbers(int count) {
  std::vector<int> numbers(static_cast<std::size_t>(3 * count));
  std::iota(numbers.begin(), numbers.end(), 1);
  std::shuffle(numbers.begin(), numbers.end(), random_);
  numbers.resize(static_cast<std::size_t>(count));
  return numbers;
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
  for (AuthoredNode& node : study.model.nodes) {
    const std::array<float, 3> old = node.xyz;
    for (std::size_t i = 0; i < 3; ++i) {
      node.xyz[i] = static_cast<float>(axes[i][0] * old[0] + axes[i][1] * old[1] + axes[i][2] * old[2]);
    }
  }
  for (StressCase& stress_case : study.stress_cases) {
    std::vector<float>& values = stress_case.fields[0].values;
    for (std::size_t at = 0; at < values.size(); at += 6) {
      const double sx = values[at], sy = values[at + 1], sz = values[at + 2];
      const double xy = values[at + 3], xz = values[at + 4], yz = values[at + 5];
      const Matrix turned =
          Product(Product(axes, {{{sx, xy, xz}, {xy, sy, yz}, {xz, yz, sz}}}), Transposed(axes));
      const Tensor components = {turned[0][0], turned[1][1], turned[2][2],
                                 turned[0][1], turned[0][2], turned[1][2]};
      for (std::size_t c = 0; c < 6; ++c) values[at + c] = static_cast<float>(components[c]);
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
  const std::vector<AuthoredEvent> whole = std::move(study.events);
  study.events.clear();
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

RenumberedStudy Renumbered(const StudyDefinition& study, RandomStudies& random) {
  RenumberedStudy renumbered{study, {}};
  StudyModel& model = renumbered.study.model;
  const std::vector<int> nodes = random.NewNumbers(static_cast<int>(model.nodes.size()));
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    renumbered.new_node[model.nodes[i].number] = nodes[i];
    model.nodes[i].number = nodes[i];
  }
  std::sort(model.nodes.begin(), model.nodes.end(),
            [](const AuthoredNode& a, const AuthoredNode& b) { return a.number < b.number; });

  const std::vector<int> elements = random.NewNumbers(static_cast<int>(model.elements.size()));
  std::vector<std::size_t> order(elements.size());
  std::iota(order.begin(), order.end(), 0U);
  std::sort(order.begin(), order.end(),
            [&](std::size_t a, std::size_t b) { return elements[a] < elements[b]; });
  for (StressCase& stress_case : renumbered.study.stress_cases) stress_case.fields[0].values.clear();
  model.element_nodes.clear();
  for (std::size_t place = 0; place < order.size(); ++place) {
    const AuthoredElement& old = study.model.elements[order[place]];
    model.elements[place] = old;
    model.elements[place].number = elements[order[place]];
    model.elements[place].first_node = static_cast<std::uint32_t>(model.element_nodes.size());
    const std::span nodes_of = study.model.NodesOf(old);
    for (const int node : nodes_of) model.element_nodes.push_back(renumbered.new_node[node]);
    for (std::size_t c = 0; c < study.stress_cases.size(); ++c) {
      const std::size_t first = std::size_t{6} * old.first_node;
      const std::span values =
          std::span(study.stress_cases[c].fields[0].values).subspan(first, 6 * nodes_of.size());
      std::vector<float>& to = renumbered.study.stress_cases[c].fields[0].values;
      to.insert(to.end(), values.begin(), values.end());
    }
  }

  const std::vector<int> cases = random.NewNumbers(static_cast<int>(study.stress_cases.size()));
  for (StressCase& stress_case : renumbered.study.stress_cases)
    stress_case.number = cases[static_cast<std::size_t>(stress_case.number) - 1];
  std::sort(renumbered.study.stress_cases.begin(), renumbered.study.stress_cases.end(),
            [](const StressCase& a, const StressCase& b) { return a.number < b.number; });
  for (AuthoredEvent& event : renumbered.study.events) {
    for (AuthoredLoading& loading : event.loadings) {
      if (loading.stress_case != kZeroStressCase)
        loading.stress_case = cases[static_cast<std::size_t>(loading.stress_case) - 1];
    }
  }
  return renumbered;
}

}  // namespace zentor::validation
