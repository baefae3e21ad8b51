// Shared by the tests that talk to pjlsim: a small profile with one of everything, and a
// printer serving it on a loopback address.
#pragma once

#include "profile.h"
#include "server.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

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

// A printer on address, port 2000, answering from profile with the faults given; started.
inline std::unique_ptr<pjlsim::Server> Serve(const char* address,
                                             std::vector<pjlsim::Fault> faults = {},
                                             const pjlsim::Profile& profile = SmallProfile())
{
    pjlsim::ServerOptions options;
    options.address = address;
    options.port = 2000;
    options.faults = std::move(faults);
    options.delayMs = 1;
    auto server = std::make_unique<pjlsim::Server>(profile, options);
    std::string error;
    EXPECT_TRUE(server->Start(&error)) << error;
    return server;
}

} // namespace pjlsim_test
