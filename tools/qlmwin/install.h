// Installing the driver as Add Printer does, from its INF, and the ports and queues a test
// needs.
#pragma once

#include "cli.h"

int InstallCommand(Args& args, const Options& options);
int PortAddCommand(Args& args, const Options& options);
