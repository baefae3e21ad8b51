// qlmhost's commands: each takes its words after the command name and returns the exit code:
// 0 done, 1 an error (message on standard error), 2 a usage error.
#pragma once

#include "cli.h"

// What Windows' spooler does for a new queue: the driver's default record
// (DrvConvertDevMode, CDM_DRIVER_DEFAULT) stored as the queue's.
bool StoreSpoolerDefault(const Options& options, const std::string& printerName,
                         std::string* error);

// The commands of the other units.
int CapsCommand(Args& args, const Options& options);
int EventCommand(Args& args, const Options& options);
int RefreshCommand(Args& args, const Options& options);
int ParseCommand(Args& args, const Options& options);
int SheetCommand(Args& args, const Options& options);
int PrinterStateCommand(Args& args, const Options& options);
int DevmodeLayout(Args& args, const Options& options);
int DevmodeNew(Args& args, const Options& options);
int DevmodeShow(Args& args, const Options& options);
int DevmodeDefault(Args& args, const Options& options);
int DevmodeConvert(Args& args, const Options& options);
int DevmodeRead(Args& args, const Options& options);
int DevmodeStore(Args& args, const Options& options);
