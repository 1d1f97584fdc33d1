// The record of a data file.
//
//   OFFSET  SIZE  FIELD    MEANING                                             UNIT
//   0       8     Datum    time stamp, IEEE double; 0.0 is padding, no record  days since 1899-12-30, local clock
//   8       4     Kurs     IEEE single                                         price
//   12      4     Volume   IEEE single                                         size, or what the kind says
//
// All little-endian, as the host is.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

namespace zek {

struct KursDatensatz {
    double Datum = 0;
    float Kurs = 0;
    float Volume = 0;

    friend bool operator==(const KursDatensatz&, const KursDatensatz&) = default;
};

static_assert(std::endian::native == std::endian::little, "data files are little-endian");
static_assert(sizeof(KursDatensatz) == 16);
static_assert(offsetof(KursDatensatz, Kurs) == 8);
static_assert(offsetof(KursDatensatz, Volume) == 12);
static_assert(std::is_trivially_copyable_v<KursDatensatz>);

inline constexpr std::int64_t DatensatzBytes = sizeof(KursDatensatz);

}  // namespace zek
