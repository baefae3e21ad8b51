// What the fuzz targets share: the host set up once per process as the spooler would have it (a
// home of its own, the resource library installed, the driver loaded), a fresh store for each
// input, and the driver's own judgement of a record that comes out.
#pragma once

#include "platform/win32.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fuzzhost {

// The driver name every target's queue uses unless it picks another.
constexpr const char16_t* kDriver = u"Tarvo Plan Output System 2440";
// The twelve driver names, one per model identifier, that a target may pick from.
extern const char16_t* const kDrivers[];
extern const size_t kDriverCount;

// Once per process: the home under the temporary folder, the build's resource library where
// the driver looks for it, DllMain as the loader calls it. Later calls do nothing.
void SetUp();

// A fresh in-memory store with one queue on port and its stored record (empty: none). Every
// value an earlier input wrote is gone. The queue's open handle, closed by the next call.
HANDLE FreshQueue(const std::u16string& name, const std::u16string& driver,
                  const std::u16string& port, const std::vector<uint8_t>& storedRecord = {});

// The host's home and a file path inside it.
std::string Home();
std::string HomeFile(const char* name);
void WriteFile(const std::string& path, const uint8_t* data, size_t size);

// The driver's own test of a record it hands out: the identity by which getDeviceMode takes a
// record for its own, and what the driver keeps in every record it hands out (dmFields and
// dmColor, the resolution pair, no refresh on open without a bidirectional port, the guard
// blocks). null when the record passes, else what failed.
const char* RecordFault(const void* record, size_t cb);

// Aborts with the message when fault is not null, so that libFuzzer keeps the input.
void Require(const char* fault, const char* where);

// Counts the driver's failed assertions from now on (their trace line is switched on).
void CountAssertions();
int AssertionCount();

// A reader of the fuzz input: bytes, small numbers and a rest, each 0 when the input is spent.
class Input
{
public:
    Input(const uint8_t* data, size_t size) : m_p(data), m_end(data + size) {}
    bool Empty() const { return m_p >= m_end; }
    size_t Left() const { return size_t(m_end - m_p); }
    uint8_t Byte() { return Empty() ? 0 : *m_p++; }
    uint16_t Word() { return uint16_t(Byte() | (Byte() << 8)); }
    uint32_t Dword() { return uint32_t(Word() | (uint32_t(Word()) << 16)); }
    std::vector<uint8_t> Bytes(size_t n);

private:
    const uint8_t* m_p;
    const uint8_t* m_end;
};

} // namespace fuzzhost
