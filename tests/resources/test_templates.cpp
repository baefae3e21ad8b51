// The dialog templates, the special-field menu, the images and the dialog strings of the built
// QLMRes.DLL, read from the file as the window system reads them. The tables name what the
// driver addresses by number; a template that lacks a control, or holds one of another kind,
// breaks a tab or dialog at run time without any other sign.
#include "platform/host/host.h"
#include "platform/host/modules.h"
#include "resources/qlmres.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

enum Kind
{
    kPush,
    kCheck,
    kRadio,
    kGroup,
    kEdit,
    kText,
    kIcon,
    kBitmap,
    kDropDown,
    kDropList,
    kList,
    kUpDown,
    kTrackbar,
    kUnknown
};
const char* const kKindNames[] = {"push button", "check box",      "radio button", "group box",
                                  "edit",        "static text",    "static icon",  "static bitmap",
                                  "drop-down",   "drop-down list", "list box",     "up-down",
                                  "trackbar",    "unknown"};

struct Control
{
    uint32_t style = 0;
    int16_t x = 0, y = 0, cx = 0, cy = 0;
    uint32_t id = 0;
    std::u16string cls; // lower case, or "#<ordinal>"
    Kind kind = kUnknown;
};

struct Template
{
    uint32_t style = 0;
    int16_t cx = 0, cy = 0;
    uint16_t pointSize = 0;
    std::u16string typeface;
    std::vector<Control> controls;

    const Control* Find(uint32_t id) const
    {
        auto it = std::find_if(controls.begin(), controls.end(),
                               [&](const Control& c) { return c.id == id; });
        return it == controls.end() ? nullptr : &*it;
    }
};

// Reads little-endian words and strings of a resource, refusing to read past its end.
class Reader
{
public:
    Reader(const uint8_t* data, size_t size) : data_(data), size_(size) {}
    bool ok() const { return ok_; }
    size_t size() const { return size_; }
    uint16_t U16() { return uint16_t(Take(2)); }
    uint32_t U32() { return uint32_t(Take(4)); }
    int16_t I16() { return int16_t(Take(2)); }
    void Align4() { pos_ = std::min(size_, (pos_ + 3) & ~size_t(3)); }
    void Skip(size_t n) { n <= size_ - pos_ ? pos_ += n : (ok_ = false, pos_ = size_); }
    std::u16string Text()
    {
        std::u16string s;
        for (uint16_t ch; ok_ && (ch = U16()) != 0;)
            s += char16_t(ch);
        return s;
    }
    // A name or ordinal field of a template: empty, "#<number>" or the text.
    std::u16string NameOrOrdinal()
    {
        uint16_t first = U16();
        if (first == 0xFFFF)
            return u"#" + host::Utf8ToUtf16(std::to_string(U16()));
        return first == 0 ? std::u16string() : char16_t(first) + Text();
    }

private:
    uint64_t Take(size_t n)
    {
        if (!ok_ || size_ - pos_ < n) {
            ok_ = false;
            return 0;
        }
        uint64_t v = 0;
        for (size_t i = 0; i < n; ++i)
            v |= uint64_t(data_[pos_ + i]) << (8 * i);
        pos_ += n;
        return v;
    }
    const uint8_t* data_;
    size_t size_;
    size_t pos_ = 0;
    bool ok_ = true;
};

Kind KindOf(const std::u16string& cls, uint32_t style)
{
    if (cls == u"button" || cls == u"#128") {
        static const Kind kButtons[16] = {kPush,    kPush,    kCheck,   kCheck,  kRadio,   kUnknown,
                                          kUnknown, kGroup,   kUnknown, kRadio,  kUnknown, kUnknown,
                                          kUnknown, kUnknown, kUnknown, kUnknown};
        return kButtons[style & 0xF];
    } else if (cls == u"edit" || cls == u"#129") {
        return kEdit;
    } else if (cls == u"static" || cls == u"#130") {
        const uint32_t s = style & 0x1F;
        return s <= 2 || s == 0xB || s == 0xC ? kText
               : s == 3                       ? kIcon
               : s == 0xE                     ? kBitmap
                                              : kUnknown;
    } else if (cls == u"combobox" || cls == u"#133") {
        return (style & 3) == 3 ? kDropList : (style & 3) == 2 ? kDropDown : kUnknown;
    } else if (cls == u"listbox" || cls == u"#131") {
        return kList;
    } else if (cls == u"msctls_updown32") {
        return kUpDown;
    } else if (cls == u"msctls_trackbar32") {
        return kTrackbar;
    }
    return kUnknown;
}

// A DLGTEMPLATEEX; nullopt when the data is not one or ends early.
std::optional<Template> ParseTemplate(Reader r)
{
    Template t;
    if (r.U16() != 1 || r.U16() != 0xFFFF)
        return std::nullopt;
    r.U32(); // help id
    r.U32(); // extended style
    t.style = r.U32();
    const uint16_t count = r.U16();
    r.I16();
    r.I16();
    t.cx = r.I16();
    t.cy = r.I16();
    r.NameOrOrdinal();    // menu
    r.NameOrOrdinal();    // class
    r.Text();             // caption
    if (t.style & 0x40) { // DS_SETFONT
        t.pointSize = r.U16();
        r.Skip(4); // weight, italic, character set
        t.typeface = r.Text();
    }
    for (uint16_t i = 0; i < count && r.ok(); ++i) {
        r.Align4();
        Control c;
        r.U32(); // help id
        r.U32(); // extended style
        c.style = r.U32();
        c.x = r.I16();
        c.y = r.I16();
        c.cx = r.I16();
        c.cy = r.I16();
        c.id = r.U32();
        c.cls = r.NameOrOrdinal();
        // Window class names are compared without regard to case.
        std::transform(c.cls.begin(), c.cls.end(), c.cls.begin(),
                       [](char16_t ch) { return ch >= u'A' && ch <= u'Z' ? ch + 32 : ch; });
        r.NameOrOrdinal(); // text
        r.Skip(r.U16());   // creation data
        c.kind = KindOf(c.cls, c.style);
        t.controls.push_back(c);
    }
    return r.ok() ? std::optional<Template>(t) : std::nullopt;
}

constexpr uint32_t kNoId = 0xFFFFFFFF; // IDC_STATIC as a DLGTEMPLATEEX holds it
constexpr uint32_t WS_GROUP_ = 0x00020000;

struct Want
{
    uint32_t id;
    Kind kind;
};

// What the driver addresses in each template, by number and kind.
// clang-format off
const std::map<int, std::vector<Want>> kControls = {
    {IDD_PAPER_TAB, {{1009, kDropList}, {1010, kDropList}, {1008, kDropList}, {1093, kRadio},
        {1094, kRadio}, {1087, kIcon}, {1044, kEdit}, {1102, kUpDown}, {1045, kPush},
        {1083, kPush}, {1001, kPush}}},
    {IDD_JOB_TAB, {{1002, kDropList}, {1006, kDropList}, {1126, kDropList}, {1067, kDropList},
        {1085, kDropList}, {1084, kDropList}, {1155, kDropList}, {1130, kText}, {1147, kText},
        {1193, kText}, {1141, kText}, {1165, kText}, {1164, kText}, {1154, kText}, {1172, kText},
        {1088, kEdit}, {1108, kUpDown}, {1122, kPush}, {1123, kPush}, {1124, kPush}, {1125, kPush},
        {1045, kPush}}},
    {IDD_GRAPHICS_TAB, {{1097, kRadio}, {1098, kRadio}, {1099, kRadio}, {1069, kEdit},
        {1103, kUpDown}, {1016, kDropList}, {1013, kDropList}, {1174, kText}, {1095, kRadio},
        {1096, kRadio}, {1040, kCheck}, {1081, kCheck}, {1015, kDropList}, {1041, kCheck},
        {1045, kPush}, {1188, kGroup}, {1145, kGroup}, {1163, kGroup}, {1184, kText}}},
    {IDD_RENDER_TAB, {{1307, kTrackbar}, {1309, kTrackbar}, {1330, kText}, {1331, kText},
        {1311, kDropList}, {1338, kDropList}, {1336, kCheck}, {1337, kText}, {1327, kDropList},
        {1325, kEdit}, {1326, kUpDown}, {1340, kEdit}, {1341, kUpDown}, {1035, kCheck},
        {1324, kDropList}, {1323, kDropList}, {1014, kDropList}, {1353, kDropList}, {1045, kPush},
        {1306, kText}, {1308, kText}, {1310, kText}, {1332, kText}, {1333, kText}, {1328, kText},
        {1329, kText}, {1175, kText}, {1339, kText}, {1352, kText}}},
    {IDD_DEVICE_TAB, {{1091, kRadio}, {1092, kRadio}, {1250, kText}, {1251, kCheck}, {1252, kPush},
        {1129, kText}, {1034, kCheck}, {1120, kPush}, {1253, kText}, {1068, kDropList},
        {1254, kText}, {1066, kDropList}, {1346, kText}, {1343, kRadio}, {1344, kRadio},
        {1345, kEdit}, {1100, kPush}, {1045, kPush}}},
    {IDD_ABOUT_TAB, {{57, kBitmap}, {1260, kBitmap}, {1930, kText}, {1931, kText}, {1932, kText},
        {1936, kText}, {1271, kText}, {1272, kText}, {1278, kText}}},
    {IDD_ABOUT, {{57, kBitmap}, {1260, kBitmap}, {1930, kText}, {1931, kText}, {1932, kText},
        {1936, kText}, {1271, kText}, {1272, kText}, {1278, kText}, {IDOK, kPush}}},
    {IDD_FINISH, {{1264, kText}, {1265, kDropList}, {1249, kDropList}, {1274, kDropList},
        {1266, kCheck}, {1267, kCheck}, {1268, kCheck}, {1246, kCheck}, {1334, kCheck},
        {1045, kPush}}},
    {IDD_LABEL, {{1050, kEdit}, {1082, kPush}, {1032, kDropList}, {1064, kEdit}, {1118, kUpDown},
        {1223, kText}, {1033, kDropList}, {1065, kEdit}, {1119, kUpDown}, {1225, kText},
        {1055, kEdit}, {1110, kUpDown}, {1058, kEdit}, {1113, kUpDown}, {1059, kEdit},
        {1114, kUpDown}, {1004, kDropDown}, {1045, kPush}, {1189, kText}, {1191, kText},
        {1184, kText}, {1222, kText}, {1224, kText}}},
    {IDD_STAMP, {{1012, kDropDown}, {1057, kEdit}, {1112, kUpDown}, {1089, kRadio}, {1090, kRadio},
        {1355, kDropList}, {1360, kEdit}, {1362, kUpDown}, {1370, kText}, {1356, kDropList},
        {1361, kEdit}, {1363, kUpDown}, {1372, kText}, {1156, kDropList}, {1045, kPush},
        {1369, kText}, {1371, kText}, {1187, kText}}},
    {IDD_UNPRINTABLE, {{1061, kEdit}, {1048, kEdit}, {1054, kEdit}, {1051, kEdit}, {1049, kEdit},
        {1062, kEdit}, {1115, kUpDown}, {1101, kUpDown}, {1109, kUpDown}, {1105, kUpDown},
        {1104, kUpDown}, {1116, kUpDown}, {1214, kText}, {1131, kText}, {1176, kText},
        {1150, kText}, {1143, kText}, {1218, kText}, {1215, kText}, {1132, kText}, {1177, kText},
        {1151, kText}, {1144, kText}, {1219, kText}, {1005, kDropList}, {1031, kDropList},
        {1045, kPush}}},
    {IDD_PLOTNEST, {{1053, kEdit}, {1107, kUpDown}, {1158, kText}, {1160, kText}, {1045, kPush}}},
    {IDD_ROLLCONFIG, {{1157, kText}, {1023, kDropList}, {1030, kDropList}, {1045, kPush}}},
    {IDD_USERMEDIA, {{1228, kList}, {1229, kEdit}, {1063, kEdit}, {1052, kEdit}, {1220, kText},
        {1221, kText}, {1152, kText}, {1153, kText}, {1117, kUpDown}, {1106, kUpDown},
        {1007, kDropList}, {1232, kPush}, {1230, kPush}, {1233, kPush}, {1077, kIcon},
        {1078, kIcon}}},
    {IDD_CUSTOMISE, {{1359, kEdit}, {1358, kEdit}, {1375, kUpDown}, {1381, kText}, {1382, kText},
        {1379, kIcon}, {1380, kIcon}, {1354, kDropList}, {1039, kCheck}, {1036, kCheck},
        {1037, kCheck}, {1038, kCheck}, {1235, kCheck}, {1234, kPush}, {1045, kPush},
        {1377, kText}, {1378, kText}}},
    {IDD_ACCOUNT, {{1357, kEdit}, {1060, kEdit}, {1043, kCheck}}},
    {IDD_JBA, {{1277, kEdit}, {1047, kEdit}, {1043, kCheck}}},
    {IDD_PRINTERIP, {{1349, kEdit}, {1350, kPush}, {1351, kText}}},
};
// clang-format on

const std::set<int> kTabs = {101, 102, 103, 104, 105, 106};
// Dialogs that close with OK and Cancel buttons; the about dialog has OK alone and the user
// media dialog its own Close button.
const std::set<int> kOkCancel = {204, 205, 206, 207, 208, 209, 210, 214, 215, 217};

// Each up-down with the edit it steps; true where it owns a whole number and writes it into
// the edit, false for distances that the dialog steps itself.
struct Spin
{
    int templ;
    uint32_t spin, edit;
    bool integer;
};
// clang-format off
const Spin kSpins[] = {
    {101, 1102, 1044, true}, {102, 1108, 1088, true}, {103, 1103, 1069, true},
    {104, 1326, 1325, true}, {104, 1341, 1340, true}, {204, 1110, 1055, true},
    {204, 1113, 1058, true}, {204, 1114, 1059, true}, {204, 1118, 1064, false},
    {204, 1119, 1065, false}, {209, 1112, 1057, true}, {209, 1362, 1360, false},
    {209, 1363, 1361, false}, {205, 1115, 1061, false}, {205, 1101, 1048, false},
    {205, 1109, 1054, false}, {205, 1105, 1051, false}, {205, 1104, 1049, false},
    {205, 1116, 1062, false}, {207, 1107, 1053, false}, {213, 1117, 1063, false},
    {213, 1106, 1052, false}, {206, 1375, 1359, false},
    {206, IDC_CUSTOMISE_LENGTH_SPIN, 1358, false},
};
// clang-format on

// Radio buttons that must act as one group.
const std::vector<std::pair<int, std::vector<uint32_t>>> kRadioGroups = {
    {101, {1093, 1094}}, {103, {1097, 1098, 1099}}, {103, {1095, 1096}},
    {105, {1091, 1092}}, {105, {1343, 1344}},       {209, {1089, 1090}},
};

class Templates : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const std::u16string library = u"QLMRes.DLL";
        ASSERT_TRUE(std::filesystem::is_regular_file(host::InstalledDriverFilePath(library, 3)))
            << "the build's QLMRes.DLL was not installed into the driver directory";
        module_ = LoadLibraryW((host::DriverDirectory() + u"\\3\\" + library).c_str());
        ASSERT_NE(module_, nullptr) << host::detail::LastLoadError();
    }
    void TearDown() override
    {
        if (module_) {
            EXPECT_TRUE(FreeLibrary(module_));
        }
    }

    // A reader over resource id of the type; nullopt when the library lacks it.
    std::optional<Reader> Data(int id, LPCWSTR type) const
    {
        HRSRC info = FindResourceW(module_, MAKEINTRESOURCEW(id), type);
        HGLOBAL handle = info ? LoadResource(module_, info) : nullptr;
        auto* data = handle ? static_cast<const uint8_t*>(LockResource(handle)) : nullptr;
        return data ? std::optional<Reader>(Reader(data, SizeofResource(module_, info)))
                    : std::nullopt;
    }

    std::optional<Template> Load(int id) const
    {
        auto r = Data(id, RT_DIALOG);
        return r ? ParseTemplate(*r) : std::nullopt;
    }

    std::u16string String(UINT id) const
    {
        WCHAR buffer[1024];
        int n = LoadStringW(module_, id, buffer, 1024);
        return std::u16string(buffer, size_t(n > 0 ? n : 0));
    }

    HMODULE module_ = nullptr;
};

TEST_F(Templates, EveryTemplateHoldsTheControlsTheDriverAddresses)
{
    for (const auto& [id, wants] : kControls) {
        auto t = Load(id);
        ASSERT_TRUE(t) << "template " << id << " is missing or not a DLGTEMPLATEEX";
        std::set<uint32_t> seen;
        for (const auto& c : t->controls) {
            EXPECT_NE(c.kind, kUnknown) << "template " << id << " control " << c.id;
            EXPECT_TRUE(c.id == kNoId || seen.insert(c.id).second)
                << "template " << id << " holds control " << c.id << " twice";
        }
        for (const auto& w : wants) {
            const Control* c = t->Find(w.id);
            ASSERT_NE(c, nullptr) << "template " << id << " lacks control " << w.id;
            EXPECT_EQ(c->kind, w.kind) << "template " << id << " control " << w.id << " is a "
                                       << kKindNames[c->kind] << ", not a " << kKindNames[w.kind];
            // Limited or filtered fields must scroll, or the last characters can't be typed.
            if (w.kind == kEdit) {
                EXPECT_TRUE(c->style & 0x80) << "template " << id << " edit " << w.id;
            }
        }
    }
}

TEST_F(Templates, TabsArePagesWithTheLogoAndDialogsCloseWithTheirButtons)
{
    for (const auto& [id, wants] : kControls) {
        auto t = Load(id);
        ASSERT_TRUE(t) << id;
        EXPECT_EQ(t->style & 0x48, 0x48u) << id << ": DS_SHELLFONT";
        EXPECT_EQ(t->typeface, u"MS Shell Dlg") << id;
        EXPECT_EQ(t->pointSize, 8) << id;
        auto kindOf = [&](uint32_t control) {
            const Control* c = t->Find(control);
            return c ? c->kind : kUnknown;
        };
        if (kTabs.count(id)) {
            // A page is a child without frame of its own, all pages of one size.
            EXPECT_EQ(t->style & 0xC0000000, 0x40000000u) << id << ": WS_CHILD, not WS_POPUP";
            EXPECT_EQ(t->cx, 252) << id;
            EXPECT_EQ(t->cy, 218) << id;
            EXPECT_EQ(kindOf(IDC_LOGO), kBitmap) << "tab " << id << " has no logo";
            EXPECT_EQ(kindOf(IDOK), kUnknown) << "tab " << id << ": the sheet has the OK";
        } else {
            EXPECT_EQ(t->style & 0x80000000, 0x80000000u) << id << ": WS_POPUP";
            EXPECT_EQ(kindOf(IDOK), id == IDD_USERMEDIA ? kUnknown : kPush) << id;
            EXPECT_EQ(kindOf(IDCANCEL), kOkCancel.count(id) ? kPush : kUnknown) << id;
        }
    }
}

// Up-downs find their edit as the control just before them; only whole-number fields let the
// up-down write the value into the edit.
TEST_F(Templates, UpDownsFollowTheirEdits)
{
    for (const auto& s : kSpins) {
        auto t = Load(s.templ);
        ASSERT_TRUE(t) << s.templ;
        const Control* at = t->Find(s.spin);
        ASSERT_NE(at, nullptr) << s.templ << " " << s.spin;
        ASSERT_NE(at, t->controls.data()) << s.templ << " " << s.spin;
        EXPECT_EQ(at->kind, kUpDown) << s.spin;
        EXPECT_EQ((at - 1)->id, s.edit) << "template " << s.templ << " up-down " << s.spin;
        EXPECT_TRUE(at->style & 0x10) << s.spin << ": UDS_AUTOBUDDY";
        EXPECT_EQ(bool(at->style & 0x2), s.integer) << s.spin << ": UDS_SETBUDDYINT";
    }
}

// Auto radio buttons clear the others of their group, which runs from a WS_GROUP control to
// the next one.
TEST_F(Templates, RadioButtonsOfOneChoiceFormOneGroup)
{
    for (const auto& [templ, ids] : kRadioGroups) {
        auto t = Load(templ);
        ASSERT_TRUE(t) << templ;
        std::vector<size_t> group; // group number of each control
        for (const auto& c : t->controls)
            group.push_back((group.empty() ? 0 : group.back()) + ((c.style & WS_GROUP_) ? 1 : 0));
        auto groupOf = [&](uint32_t id) {
            const Control* c = t->Find(id);
            return c ? group[size_t(c - t->controls.data())] : size_t(-1);
        };
        const size_t first = groupOf(ids[0]);
        ASSERT_NE(first, size_t(-1)) << "template " << templ << " lacks radio " << ids[0];
        for (uint32_t id : ids)
            EXPECT_EQ(groupOf(id), first) << "template " << templ << " radio " << id;
        for (size_t i = 0; i < t->controls.size(); ++i) {
            if (group[i] == first && t->controls[i].kind == kRadio) {
                EXPECT_NE(std::find(ids.begin(), ids.end(), t->controls[i].id), ids.end())
                    << "template " << templ << ": radio " << t->controls[i].id
                    << " joins the group of " << ids[0];
            }
        }
    }
}

// Controls that take each other's place: a tab shows one of each pair and hides the other.
const std::set<std::pair<uint32_t, uint32_t>> kAlternates = {
    {1175, 1328}, {1014, 1324}, {1310, 1329}, {1311, 1323}, // rendering: model 5's rows
};

// Controls stand inside their template and apart from each other; a group box encloses a
// control wholly or not at all. A combo box is measured closed.
TEST_F(Templates, ControlsNeitherOverlapNorLeaveTheTemplate)
{
    struct Box
    {
        int left, top, right, bottom;
    };
    auto box = [](const Control& c) {
        int cy = (c.kind == kDropList || c.kind == kDropDown) ? std::min<int>(c.cy, 12) : c.cy;
        return Box{c.x, c.y, c.x + c.cx, c.y + cy};
    };
    auto meet = [](Box a, Box b) {
        return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
    };
    auto inside = [](Box a, Box outer) {
        return a.left >= outer.left && a.right <= outer.right && a.top >= outer.top &&
               a.bottom <= outer.bottom;
    };
    for (const auto& [id, wants] : kControls) {
        auto t = Load(id);
        ASSERT_TRUE(t) << id;
        for (size_t i = 0; i < t->controls.size(); ++i) {
            const Control& a = t->controls[i];
            EXPECT_TRUE(inside(box(a), Box{0, 0, t->cx, t->cy}))
                << "template " << id << " control " << a.id << " leaves the template";
            for (size_t j = i + 1; j < t->controls.size(); ++j) {
                const Control& b = t->controls[j];
                if (a.kind == kGroup || b.kind == kGroup) {
                    const Control& g = a.kind == kGroup ? a : b;
                    const Control& o = a.kind == kGroup ? b : a;
                    EXPECT_TRUE(!meet(box(o), box(g)) || inside(box(o), box(g)))
                        << "template " << id << ": control " << o.id << " crosses group box "
                        << g.id;
                } else if (!kAlternates.count({a.id, b.id})) {
                    EXPECT_FALSE(meet(box(a), box(b))) << "template " << id << ": controls " << a.id
                                                       << " and " << b.id << " overlap";
                }
            }
        }
    }
}

TEST_F(Templates, TheRollRowsAreComplete)
{
    auto t = Load(IDD_ROLLCONFIG);
    ASSERT_TRUE(t);
    for (uint32_t row = 0; row < 6; ++row) {
        const std::pair<uint32_t, Kind> parts[] = {{1178 + row, kText},
                                                   {1017 + row, kDropList},
                                                   {1024 + row, kDropList},
                                                   {1195 + row, kText}};
        for (const auto& [control, kind] : parts) {
            const Control* c = t->Find(control);
            ASSERT_NE(c, nullptr) << "row " << row << " lacks " << control;
            EXPECT_EQ(c->kind, kind) << control;
        }
    }
    // The dialog shrinks by moving the buttons up: they must be its lowest controls.
    const int buttons = t->Find(IDOK)->y;
    for (const auto& c : t->controls)
        EXPECT_LE(c.y, buttons) << c.id;
}

TEST_F(Templates, TheDialogStringsExist)
{
    // Single strings (the unit and paper names are checked by their text elsewhere), then ranges:
    // fold programs, label fields, roll status, accordion folds 2 to 8, cross folds 2 to 11, punch
    // and tab names.
    const std::pair<UINT, UINT> ranges[] = {{114, 114},   {132, 132},   {5009, 5009}, {5217, 5217},
                                            {5307, 5307}, {5802, 5802}, {6001, 6004}, {6008, 6008},
                                            {6022, 6023}, {6100, 6103}, {6150, 6153}, {6156, 6157},
                                            {6200, 6200}, {7004, 7004}, {5027, 5033}, {5501, 5508},
                                            {5633, 5636}, {6104, 6110}, {6120, 6129}, {6140, 6146}};
    for (auto [first, last] : ranges)
        for (UINT id = first; id <= last; ++id)
            EXPECT_FALSE(String(id).empty()) << "string " << id;
}

// The conversions of each format string, in order ("s" for "%s"); "%%" is no conversion.
std::string Conversions(const std::u16string& format)
{
    std::string out;
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] != u'%')
            continue;
        size_t j = i + 1;
        while (j < format.size() &&
               std::u16string(u"-+ #0123456789.lhL").find(format[j]) != std::u16string::npos) {
            ++j;
        }
        if (j < format.size() && format[j] != u'%')
            out += char(format[j]);
        i = j;
    }
    return out;
}

TEST_F(Templates, FormatStringsTakeTheirArguments)
{
    // Range error: the field's caption, the minimum and the maximum, each already text.
    EXPECT_EQ(Conversions(String(IDS_RANGE_ERROR)), "sss");
    // Finishing sizes: width, length, unit, margin, unit.
    EXPECT_EQ(Conversions(String(IDS_FINISH_SIZES)), "sssss");
    // Texts shown as they are must not look like formats.
    for (UINT id : {IDS_PRINTERIP_TEST_OK, IDS_PRINTERIP_TEST_FAILED, IDS_MEDIA_ENDS_FINISHING})
        EXPECT_EQ(Conversions(String(id)), "") << id;
    // The file filter ends with its separator and holds pairs of description and pattern.
    const std::u16string filter = String(IDS_FINISHER_FILE_FILTER);
    ASSERT_FALSE(filter.empty());
    const char16_t separator = filter.back();
    const auto parts = std::count(filter.begin(), filter.end(), separator);
    EXPECT_GE(parts, 2);
    EXPECT_EQ(parts % 2, 0);
    EXPECT_EQ(filter.find(std::u16string(2, separator)), std::u16string::npos);
}

TEST_F(Templates, TheFieldMenuOffersTheEightFields)
{
    auto menu = Data(IDM_LABEL_FIELDS, RT_MENU);
    ASSERT_TRUE(menu) << "menu 300";
    Reader& r = *menu;
    ASSERT_EQ(r.U16(), 0) << "a MENU, not a MENUEX";
    r.U16();
    const uint16_t popup = r.U16();
    EXPECT_TRUE(popup & 0x10) << "the first item opens the submenu";
    r.Text();
    std::vector<uint16_t> commands;
    for (uint16_t flags = 0; r.ok() && !(flags & 0x80);) { // MF_END marks the last item
        flags = r.U16();
        commands.push_back(r.U16());
        EXPECT_FALSE(r.Text().empty()) << commands.back();
    }
    ASSERT_TRUE(r.ok());
    EXPECT_EQ(commands, (std::vector<uint16_t>{2001, 2002, 2003, 2004, 2005, 2006, 2007, 2008}));
}

TEST_F(Templates, TheBitmapsAndIconsAreThere)
{
    // The about pictures, the logo and one picture per model family.
    for (int id : {54, 55, 58, 59, 60, 61, 62, 63, 64, 65, 66}) {
        auto r = Data(id, RT_BITMAP);
        ASSERT_TRUE(r) << "bitmap " << id;
        EXPECT_EQ(r->U32(), 40u) << id << ": BITMAPINFOHEADER";
        const int32_t width = int32_t(r->U32()), height = int32_t(r->U32());
        r->U16();
        const uint16_t bits = r->U16();
        ASSERT_TRUE(bits == 24 || bits == 8) << id;
        ASSERT_GT(width, 0);
        const size_t stride = (size_t(width) * bits / 8 + 3) / 4 * 4;
        EXPECT_GE(r->size(), 40 + (bits == 8 ? 1024 : 0) + stride * size_t(std::abs(height))) << id;
    }
    // The orientation icons, each with its image.
    for (int id = 1; id <= 6; ++id) {
        auto r = Data(id, RT_GROUP_ICON);
        ASSERT_TRUE(r) << "icon " << id;
        r->U16();
        EXPECT_EQ(r->U16(), 1) << id;
        const uint16_t count = r->U16();
        ASSERT_GE(count, 1) << id;
        for (uint16_t i = 0; i < count; ++i) {
            r->Skip(12);
            const uint16_t image = r->U16();
            EXPECT_TRUE(Data(image, RT_ICON)) << id << " " << image;
        }
        EXPECT_TRUE(r->ok()) << id;
    }
}

// The identifiers the header names, by name: "#define IDC_X 1234" lines.
std::map<std::string, long> HeaderIdentifiers(const std::string& path)
{
    std::map<std::string, long> ids;
    std::ifstream header(path);
    const std::regex define(R"(^\s*#define\s+(IDC_\w+)\s+\(?(-?\d+)\)?)");
    std::smatch m;
    for (std::string line; std::getline(header, line);)
        if (std::regex_search(line, m, define))
            ids[m[1]] = std::stol(m[2]);
    return ids;
}

// Every IDC_ name the driver's sources use.
std::set<std::string> NamesTheDriverUses(const std::filesystem::path& root)
{
    std::set<std::string> names;
    const std::regex use(R"(\bIDC_\w+)");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        const auto ext = entry.path().extension();
        if (ext != ".cpp" && ext != ".h")
            continue;
        std::ifstream file(entry.path());
        std::string text((std::istreambuf_iterator<char>(file)), {});
        for (std::sregex_iterator it(text.begin(), text.end(), use), end; it != end; ++it)
            names.insert(it->str());
    }
    return names;
}

// A control the code addresses but no template holds would be missing on every platform.
TEST_F(Templates, EveryControlTheCodeAddressesIsInATemplate)
{
    const std::string source = QLM_TEST_SOURCE_DIR;
    const auto header = HeaderIdentifiers(source + "/resources/qlmres.h");
    const auto used = NamesTheDriverUses(source + "/driver");
    ASSERT_FALSE(used.empty());
    std::set<uint32_t> held;
    for (int id : {101, 102, 103, 104, 105, 106, 201, 204, 205, 206, 207, 208, 209, 210, 213, 214,
                   215, 217}) {
        auto t = Load(id);
        ASSERT_TRUE(t) << id;
        for (const auto& c : t->controls)
            held.insert(c.id);
    }
    // Names the header lacks are the system's (cursors such as IDC_WAIT).
    for (const std::string& name : used) {
        auto it = header.find(name);
        if (it == header.end())
            continue;
        EXPECT_TRUE(held.count(static_cast<uint32_t>(it->second))) << name << " is in no template";
    }
}

} // namespace
