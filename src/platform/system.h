// The clock, the environment and the machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zentor::platform {

struct LocalTime {
  int year;    // in full, 2011
  int month;   // 1 to 12
  int day;     // 1 to 31
  int hour;    // 0 to 23
  int minute;  // 0 to 59
  int second;  // 0 to 60
};

LocalTime LocalTimeNow();
std::int64_t SecondsSince1970();

// Physical memory that the system can still hand out, in bytes.
std::uint64_t AvailableMemory();
// Whether a block of that many bytes can be allocated now (it is freed at once and never touched).
bool CanAllocate(std::uint64_t bytes);
// Suggests large pages for a block that is about to be filled; the system may ignore it.
void PreferLargePages(void* block, std::size_t bytes);

// Asks the system to take memory that other programs do not need at the moment. No effect where the system
// does that by itself (Linux takes pages back whenever another process needs them).
void TrimOtherProcesses();

std::optional<std::string> Environment(const std::string& name);
void SetEnvironment(const std::string& name, const std::string& value);

// Standard input, output and error that the caller has closed become empty ones, so that no file that is
// opened later takes their place and receives what is written to them. Called before any file is opened.
void KeepStandardStreams();

// From here on a write beyond the limit that the system sets on the size of files fails with its reason; as
// the system has it, the signal for that ends the process. Programs that are started inherit it.
void LetFileSizeLimitFailWrites();

// The same for a program that reports what could not be written: writing to a standard output that the caller
// has closed fails.
void HoldStandardStreams();

// Writes all bytes to standard output, past every buffer. The system's error code, 0 when all is written.
int WriteStandardOutput(std::span<const std::byte> bytes);
// Writes to standard error without allocating anything.
void WriteStandardError(std::string_view text);

// Where something that must not throw gets no memory, `end` is called, which ends the process; otherwise a
// signal would.
void EndWithoutMemoryBy(void (*end)());

// Full path of the running program, links resolved; empty when the system does not tell.
std::string ProgramPath();

int ProcessId();
std::string HostName();

// The default system sound, where output goes to a terminal; otherwise nothing.
void SystemSound();

}  // namespace zentor::platform
