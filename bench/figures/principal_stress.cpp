// Principal values of a batch of general tensors against the closed-form solver of a linear algebra library.
#include <Eigen/Eigenvalues>
#include <array>
#include <cstddef>
#include <cstdio>
#include <random>
#include <span>
#include <vector>

#include "figures/measurements.h"
#include "stress/principal_batch.h"

namespace zentor::bench {
namespace {

constexpr std::size_t kTensors = 4096;
using Column = std::vector<double>;

struct Batch {
  std::array<Column, 6> components;
  std::array<Column, 3> values;
  std::vector<Eigen::Matrix3d> matrices;
  std::vector<Eigen::Vector3d> eigenvalues;
};

Batch MakeBatch() {
  std::mt19937_64 random(4096);
  std::normal_distribution<double> stress(0.0, 60.0);
  Batch batch;
  for (Column& column : batch.components) {
    for (std::size_t i = 0; i < kTensors; ++i) column.push_back(stress(random));
  }
  for (Column& column : batch.values) column.resize(kTensors);
  const auto& [sx, sy, sz, txy, txz, tyz] = batch.components;
  for (std::size_t i = 0; i < kTensors; ++i) {
    Eigen::Matrix3d matrix;
    matrix << sx[i], txy[i], txz[i], txy[i], sy[i], tyz[i], txz[i], tyz[i], sz[i];
    batch.matrices.push_back(matrix);
  }
  batch.eigenvalues.resize(kTensors);
  return batch;
}

void SolveReference(Batch& batch) {
  Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver;
  for (std::size_t i = 0; i < kTensors; ++i) {
    solver.computeDirect(batch.matrices[i], Eigen::EigenvaluesOnly);
    batch.eigenvalues[i] = solver.eigenvalues();
  }
}

void SolveBatch(Batch& batch) {
  std::array<std::span<const double>, 6> in;
  for (std::size_t c = 0; c < 6; ++c) in[c] = batch.components[c];
  std::array<std::span<double>, 3> out;
  for (std::size_t k = 0; k < 3; ++k) out[k] = batch.values[k];
  PrincipalBatch(in, out);
}

}  // namespace

std::vector<Figure> MeasurePrincipalStress(const ReportOptions& options) {
  Batch batch = MakeBatch();
  // Both sides take about as long, so that what else the machine does falls on both alike.
  constexpr int kReferenceRepeats = 10;
  constexpr int kRepeats = 100;
  const Paired paired = TimePaired(
      options.quick ? 25 : 101,
      [&] {
        for (int k = 0; k < kReferenceRepeats; ++k) SolveReference(batch);
      },
      [&] {
        for (int k = 0; k < kRepeats; ++k) SolveBatch(batch);
      });

  Figure figure;
  figure.name = "principal values of 4096 general tensors";
  figure.reference = "Eigen computeDirect, values only";
  figure.measured = paired.ratio * kRepeats / kReferenceRepeats;
  figure.goal = 7;
  figure.stretch = 10;
  char note[80];
  std::snprintf(note, sizeof(note), "%.1f ns a tensor", paired.seconds / kRepeats / kTensors * 1e9);
  figure.note = note;
  return {figure};
}

}  // namespace zentor::bench
