// Studies of solids for the benchmarks: their files are large, their contents pseudo-random and always the
// same.
#pragma once

#include <cstdint>
#include <string>

namespace zentor::bench {

// Writes an all-nodes study of constant amplitude as `base` plus extensions: a bar of eight-node solids with
// 100 nodes in every cross-section and stresses that differ from element to element and from loading to
// loading, so that every node sorts pairs of its own; five events that share the loadings, von Mises stress,
// Goodman correction, a log-log S-N curve of five points that no stress exceeds.
// REQUIRES: nodes a multiple of 100, at least 200; loadings 2 .. 40.
void WriteSolidStudy(const std::string& base, int nodes, int loadings);

// Writes a stress file of a cube of side^3 eight-node solids, numbered with x fastest, and nothing else.
void WriteSolidCube(const std::string& path, int side, int steps);

}  // namespace zentor::bench
