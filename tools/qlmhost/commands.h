// The commands of qlmhost and qlmwin: each takes its words after the command name and returns
// the exit code: 0 done, 1 an error (message on standard error), 2 a usage error. The tables
// that name them are the tools' main units'.
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

// The spooler's and the registry's state, and the driver's immediate answers (qlmhost).
int PrinterAdd(Args& args, const Options& options);
int PrinterRemove(Args& args, const Options& options);
int PrinterList(Args& args, const Options& options);
int PortAdd(Args& args, const Options& options);
int PortList(Args& args, const Options& options);
int DataSet(Args& args, const Options& options);
int DataGet(Args& args, const Options& options);
int RegSet(Args& args, const Options& options);
int RegGet(Args& args, const Options& options);
int RegDelete(Args& args, const Options& options);
int DriverAnswers(Args& args, const Options& options);
int DriverInstall(Args& args, const Options& options);

// Rows that both tools' tables hold.
extern const Command g_CapsCommand;
extern const Command g_DevmodeDefaultCommand;
extern const Command g_DevmodeShowCommand;
extern const Command g_DevmodeConvertCommand;
extern const Command g_SheetCommand;
extern const Command g_BatchCommand;
extern const Command g_ProbeCommand;
extern const Command g_BenchCommand;
extern const Command g_SoakCommand;
int BatchCommand(Args& args, const Options& options);

// Runs each command line of a file, in this process, one after the other: blank lines and
// lines that start with # are passed over, and words split at blanks, "..." keeping blanks in
// one word. Prints one line a command: the line, a tab, and what the command printed on one
// line, or {"error": ...} with its message when it printed nothing and failed. 0 when every
// command succeeded.
int RunBatch(const std::string& path, const Options& options);
