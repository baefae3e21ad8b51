// The stored form of the accounting identifiers: the per-user value "Accounting".
#pragma once

#include "../../platform/win32.h"

struct TVOAccountingBlock
{
    DWORD dmxRememberAccount;
    DWORD dmxAccount;
    DWORD dmxSubAccount;
    WCHAR dmxJBAUser[32]; // not terminated when all 32 characters are used
    WCHAR dmxJBAAcct[32];
};
static_assert(sizeof(TVOAccountingBlock) == 140, "the accounting value is 140 bytes");
static_assert(offsetof(TVOAccountingBlock, dmxJBAUser) == 12 &&
                  offsetof(TVOAccountingBlock, dmxJBAAcct) == 76,
              "accounting block layout");
// The old style holds the three numbers alone.
constexpr DWORD kACCOUNTING_OLD_SIZE = 12;
