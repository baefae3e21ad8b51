#include "printerstate.h"

#include "driver/devmode/tvodm.h"

#include <cstdio>
#include <cstring>

namespace {

// A code's word, or "code N" for a value that no table row gives.
std::string Word(LPCWSTR text, long long code)
{
    return text ? TextQuote(text) : "code " + std::to_string(code);
}

std::u16string Field(const WCHAR* p, size_t cch)
{
    return BoundedText(reinterpret_cast<const BYTE*>(p), cch);
}

std::vector<std::u16string> List(const WCHAR* p, size_t cch)
{
    return BoundedList(reinterpret_cast<const BYTE*>(p), cch);
}

std::string Joined(const std::vector<std::u16string>& names)
{
    std::string text;
    for (const std::u16string& name : names)
        text += (text.empty() ? "" : ", ") + TextQuote(name);
    return text.empty() ? "none" : text;
}

struct Media
{
    DWORD size, type, status;
};

Media RollOf(const DEVMODEEX& dm, int i)
{
    return {dm.dmxRollSize[i], dm.dmxRollType[i], dm.dmxRollStatus[i]};
}

std::string MediaText(const Media& m)
{
    return Word(TVODevMode::GetRollSizeText(m.size), m.size) + ", " +
           Word(TVODevMode::GetMediaTypeText(m.type), m.type) + ", " +
           Word(TVODevMode::GetRollStatusText(m.status), m.status);
}

void MediaToJson(JsonWriter& json, const char* key, const Media& m)
{
    json.BeginObject(key);
    auto named = [&](const char* key, LPCWSTR text, DWORD code) {
        if (text)
            json.String(key, std::u16string(text));
        else
            json.Null(key);
        json.Number((std::string(key) + "Code").c_str(), code);
    };
    named("size", TVODevMode::GetRollSizeText(m.size), m.size);
    named("type", TVODevMode::GetMediaTypeText(m.type), m.type);
    named("status", TVODevMode::GetRollStatusText(m.status), m.status);
    json.EndObject();
}

int RollCount(const DEVMODEEX& dm)
{
    return dm.dmxNumRolls < kMAX_ROLLS ? dm.dmxNumRolls : kMAX_ROLLS;
}

DWORD ProgramCount(const TVOFinisherInfo& f)
{
    return f.numPrograms < kFINISHER_MAX_PROGRAMS ? f.numPrograms : kFINISHER_MAX_PROGRAMS;
}

std::string ProgramText(const TVOFinisherProgram& p)
{
    char numbers[256];
    snprintf(numbers, sizeof(numbers),
             "%u x %u, margin %u, fan fold %u, cross fold %u, punch %u, tab %u, bins %u, "
             "title %u, max length %d, edge %u, delivery %u",
             p.width, p.length, p.margin, p.fanFold, p.crossFold, p.punch, p.tab, p.bins, p.title,
             static_cast<int>(p.maxLength), p.edge, p.sheetDelivery);
    return TextQuote(Field(p.name, std::size(p.name))) + ": " + numbers;
}

} // namespace

std::string PrinterStateAsText(const DEVMODEEX& dm)
{
    std::string text;
    auto line = [&](const std::string& label, const std::string& value) {
        char head[24];
        snprintf(head, sizeof(head), "  %-16s", label.c_str());
        text += head + value + "\n";
    };
    line("firmware",
         Word(TVODevMode::GetFirmwareRevText(dm.dmxFirmwareRevision), dm.dmxFirmwareRevision));
    line("rolls", std::to_string(dm.dmxNumRolls));
    for (int i = 0; i < RollCount(dm); i++)
        line("  roll " + std::to_string(i + 1), MediaText(RollOf(dm, i)));
    // An empty sheet feed's size and type are what the printer last had there: not worth a look.
    if (dm.dmxSheetStatus == 0)
        line("sheet feed", Word(TVODevMode::GetRollStatusText(0), 0));
    else
        line("sheet feed", MediaText({dm.dmxSheetSize, dm.dmxSheetType, dm.dmxSheetStatus}));
    line("fonts", Joined(List(dm.dmxFontList, std::size(dm.dmxFontList))));
    line("label font", TextQuote(Field(dm.dmxDefaultFont, std::size(dm.dmxDefaultFont))));
    line("raster stamps", Joined(List(dm.dmxRasterStampList, std::size(dm.dmxRasterStampList))));
    line("default stamp", TextQuote(Field(dm.dmxDefaultStamp, std::size(dm.dmxDefaultStamp))));
    const TVOFinisherInfo& f = dm.dmxFinisher;
    line("finisher", Word(TVODevMode::GetFinisherTypeText(dm.dmxFinisherType), dm.dmxFinisherType));
    if (f.numPrograms) {
        line("  model", TextQuote(Field(f.Model, std::size(f.Model))) + ", version " +
                            TextQuote(Field(f.Version, std::size(f.Version))));
        line("  bins, margins", std::to_string(f.numBins) + ", " + std::to_string(f.minMargin) +
                                    " to " + std::to_string(f.maxMargin));
        line("  programs", std::to_string(f.numPrograms));
        for (DWORD i = 0; i < ProgramCount(f); i++)
            line("  " + std::to_string(i + 1), ProgramText(f.programs[i]));
    }
    return text;
}

void PrinterStateToJson(JsonWriter& json, const char* key, const DEVMODEEX& dm)
{
    json.BeginObject(key);
    if (LPCWSTR firmware = TVODevMode::GetFirmwareRevText(dm.dmxFirmwareRevision))
        json.String("firmware", std::u16string(firmware));
    else
        json.Null("firmware");
    json.Number("firmwareCode", dm.dmxFirmwareRevision);
    json.BeginArray("rolls");
    for (int i = 0; i < RollCount(dm); i++)
        MediaToJson(json, nullptr, RollOf(dm, i));
    json.EndArray();
    MediaToJson(json, "sheetFeed", {dm.dmxSheetSize, dm.dmxSheetType, dm.dmxSheetStatus});
    json.BeginArray("fonts");
    for (const std::u16string& name : List(dm.dmxFontList, std::size(dm.dmxFontList)))
        json.String(nullptr, name);
    json.EndArray();
    json.String("labelFont", Field(dm.dmxDefaultFont, std::size(dm.dmxDefaultFont)));
    json.BeginArray("rasterStamps");
    for (const std::u16string& name : List(dm.dmxRasterStampList, std::size(dm.dmxRasterStampList)))
        json.String(nullptr, name);
    json.EndArray();
    json.String("defaultStamp", Field(dm.dmxDefaultStamp, std::size(dm.dmxDefaultStamp)));
    if (LPCWSTR type = TVODevMode::GetFinisherTypeText(dm.dmxFinisherType))
        json.String("finisherType", std::u16string(type));
    else
        json.Null("finisherType");
    FinisherToJson(json, "finisher", reinterpret_cast<const BYTE*>(&dm.dmxFinisher),
                   sizeof(dm.dmxFinisher));
    json.EndObject();
}
