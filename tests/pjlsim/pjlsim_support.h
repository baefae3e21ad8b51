// Shared by the pjlsim tests: a small profile with one of everything.
#pragma once

#include "profile.h"

#include <gtest/gtest.h>

#include <string>

namespace pjlsim_test {

// One of everything the driver reads, with values whose wire forms are easy to write by hand.
constexpr const char kSmallProfile[] = R"(# a small printer
id = TEST 1
firmware = 12.5
memory = 1024
scanner = 4126
finisher-type = GFI
roll1 = Roll 36in, FULL, PAPER
roll2 = ROLL_A0+, LOW, "PRESENTATION_360"
manual = ANY, NONE, ""
accounting = DISABLED
label-font = HELV
default-stamp = DRAFT
font = HELV, Helvetica, size=100
stamp = DRAFT, size=50, rw=RW
finisher.model = F1
finisher.version = 0.0
finisher.fanfolds = FULL_FRONT_END_LEFT
finisher.max-margin = 20
finisher.program = P1, fanfold=FULL_FRONT_END_LEFT, crossfold=WALLET, width=210, length=297, margin=20, punch=PUNCH_3, tab=TAB, bins=2, maxlength=900, delivery=FACEDOWN, title=1, edge=SHORTEDGE
status-code = 40000
status-display = SLEEP MODE
online = FALSE
)";

inline pjlsim::Profile SmallProfile()
{
    std::string error;
    auto profile = pjlsim::ParseProfile(kSmallProfile, "small", &error);
    EXPECT_TRUE(profile) << error;
    return profile.value_or(pjlsim::Profile{});
}

} // namespace pjlsim_test
