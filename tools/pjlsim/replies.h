// What the simulated printer says to each PJL query it understands.
#pragma once

#include "profile.h"

#include <optional>
#include <string>
#include <string_view>

namespace pjlsim {

constexpr char kFormFeed = '\f';

// The query names that fault modes select: ID, CONFIG, VARIABLES, TVOFONTS, TVORASTERSTAMPS,
// TVOFINISHER, STATUS, MEMORY, ECHO.
bool IsQueryName(std::string_view name);

// The name of the query on one received line (without its line end), or nothing for a line
// that is not a query this printer answers. A leading Universal Exit Language is passed over,
// and words are compared without regard to case, as printers do.
std::optional<std::string> QueryName(std::string_view line);

// The complete reply to one received line, formfeed included, or nothing.
std::optional<std::string> BuildReply(const Profile& profile, std::string_view line);

} // namespace pjlsim
