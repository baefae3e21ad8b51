// The parser alone over a full receive buffer: the six replies of a plotter with a long font
// list, 32 KB in all, parsed into 64 pairs as the refresh does.
#include "driver/dialogue/tvoparsepjl.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

std::vector<char> Capture()
{
    std::string text = "@PJL INFO ID\r\n\"TARVO PLAN 2440\"\r\n\f"
                       "@PJL INFO CONFIG\r\n"
                       "IN TRAYS [1 ENUMERATED]\r\n\tINTRAY1\r\n"
                       "MEMORY=64\r\nDISPLAY LINES=2\r\nDISPLAY CHARACTER SIZE=16\r\n"
                       "ESS SW REV=3.07.12\r\nSCANNER TYPE=NONE\r\nMODEM TYPE=NONE\r\n"
                       "FINISHER TYPE=FOLDMASTER\r\n\f"
                       "@PJL INFO VARIABLES\r\n";
    const char* sizes[] = {"ROLL_36", "ROLL_A0+", "ISO_A1", "ROLL_24", "ANY_ROLL", "ROLL_42"};
    for (int i = 1; i <= 6; i++) {
        std::string n = std::to_string(i);
        text += "INROLL" + n + "SIZE = " + sizes[i - 1] +
                " [4 ENUMERATED]\r\n\tROLL_24\r\n\tROLL_36\r\n\tROLL_42\r\n\tANY\r\n";
        text += "INROLL" + n + "TYPE =  \"PRESENTATION_360\"\r\n";
        text += "INROLL" + n + "STAT = FULL\r\n";
    }
    text += "RESOLUTION = 600 [2 RANGE]\r\n\t300\r\n\t600\r\n"
            "PRTACCTMODE = OFF\r\nLABELFONTOBJ = HELV\r\nRASTERSTAMPID = DRAFT\r\n\f"
            "@PJL INFO TVORASTERSTAMPS\r\nR/W\tDELETE\tSIZE\tOBJECT NAME\r\n"
            "RW\tY\t1200\tDRAFT\r\nRW\tY\t1400\tCONFIDENTIAL\r\n\f"
            "@PJL INFO TVOFINISHER\r\nMODEL = FOLDMASTER 7\r\nVERSION = 2.1\r\n"
            "NUMPROGRAMS = 1\r\nNUMBINS = 3\r\nFANFOLDS = FULL_FRONT_END_LEFT\r\n"
            "CROSSFOLDS = NONE\r\nPUNCH = NONE\r\nTABS = NONE\r\nMINMARGIN = 5\r\n"
            "MAXMARGIN = 25\r\nFINISHERPROGRAMS\r\n"
            "NAME\tFANFOLD\tCROSSFOLD\tWIDTH\tLENGTH\tMARGIN\tPUNCH\tTAB\tBINS\tMAXLENGTH\t"
            "SHEETDELIVERY\tTITLE\tEDGE\r\n"
            "A4 FOLD\tFULL_FRONT_END_LEFT\tNONE\t210\t297\t20\tNONE\tNONE\t1\t5000\t0\t1\t0\r\n\f"
            "@PJL INFO TVOFONTS\r\nR/W\tDELETE\tSIZE\tOBJECT NAME\tFONT NAME\r\n";
    // The font list fills the rest of the buffer, one line per font, as a plotter with many
    // downloaded fonts sends it; the last byte stays zero as the refresh leaves it.
    for (int i = 0; text.size() < kPJL_REPLY_BUFFER_SIZE - 64; i++)
        text += "RW\tY\t" + std::to_string(30000 + i) + "\tF" + std::to_string(i) +
                "\tDownloaded Font " + std::to_string(i) + "\r\n";
    text += "\f";
    std::vector<char> buffer(kPJL_REPLY_BUFFER_SIZE, 0);
    text.copy(buffer.data(), kPJL_REPLY_BUFFER_SIZE - 1);
    return buffer;
}

void BM_ParseFullReceiveBuffer(benchmark::State& state)
{
    std::vector<char> buffer = Capture();
    TVOParsePJL parser;
    PJLTokenValue tokens[kPJL_MAX_TOKENS];
    DWORD count = 0;
    const char* end = nullptr;
    for (auto _ : state) {
        int status = parser.getAllPJLTokens(buffer.data(), kPJL_REPLY_BUFFER_SIZE, kPJL_MAX_TOKENS,
                                            tokens, &count, &end);
        benchmark::DoNotOptimize(status);
        benchmark::DoNotOptimize(tokens);
    }
    if (count < 40)
        state.SkipWithError("the capture did not parse as expected");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * (end - buffer.data()));
    state.counters["tokens"] = count;
}
BENCHMARK(BM_ParseFullReceiveBuffer);

} // namespace

BENCHMARK_MAIN();
