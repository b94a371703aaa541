// The machine and the build that a report was measured on.
#pragma once

#include <string>

namespace zentor::bench {

// One line: processor, cores this program may use, memory, compiler, how busy the machine is right now.
std::string DescribeMachine();

}  // namespace zentor::bench
