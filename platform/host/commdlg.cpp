// comdlg32: the open dialog, answered by the script's `file` actions, then by the queued
// choices of the user simulation.
#include "wininternal.h"

#include <algorithm>
#include <deque>
#include <sys/stat.h>
#include <vector>

namespace {

struct FilePickerState
{
    std::deque<std::optional<std::u16string>> answers;
    std::vector<std::u16string> titles;
    DWORD lastError = 0;
};

FilePickerState& State()
{
    static auto* state = new FilePickerState;
    return *state;
}

// What the dialog itself would refuse before closing: a missing file or folder.
bool Acceptable(const std::u16string& path, DWORD flags)
{
    if (!(flags & (OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST)))
        return true;
    std::string hostPath = host::MapWindowsPath(path);
    struct stat st;
    if (flags & OFN_FILEMUSTEXIST)
        return stat(hostPath.c_str(), &st) == 0 && S_ISREG(st.st_mode);
    size_t slash = hostPath.find_last_of('/');
    std::string folder = slash == std::string::npos ? "." : hostPath.substr(0, slash + 1);
    return stat(folder.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// The offsets of the name and of its extension within the path, as the dialog fills them.
void SetOffsets(OPENFILENAMEW* ofn, const std::u16string& path)
{
    size_t slash = path.find_last_of(u"\\/");
    size_t name = slash == std::u16string::npos ? 0 : slash + 1;
    size_t dot = path.find_last_of(u'.');
    ofn->nFileOffset = static_cast<WORD>(name);
    ofn->nFileExtension =
        static_cast<WORD>(dot == std::u16string::npos || dot < name ? path.size() : dot + 1);
}

} // namespace

namespace host {

void QueueFilePickerAnswer(std::optional<std::u16string> path)
{
    detail::Lock lock(detail::StateMutex());
    State().answers.push_back(std::move(path));
}

void ClearFilePickerAnswers()
{
    detail::Lock lock(detail::StateMutex());
    State().answers.clear();
}

std::vector<std::u16string> FilePickerTitles()
{
    detail::Lock lock(detail::StateMutex());
    return State().titles;
}

void ClearFilePickerTitles()
{
    detail::Lock lock(detail::StateMutex());
    State().titles.clear();
}

} // namespace host

extern "C" {

BOOL WINAPI GetOpenFileNameW(LPOPENFILENAMEW lpofn)
{
    host::detail::Lock lock(host::detail::StateMutex());
    FilePickerState& state = State();
    if (!lpofn || lpofn->lStructSize != sizeof(OPENFILENAMEW)) {
        state.lastError = CDERR_STRUCTSIZE;
        return FALSE;
    }
    if (!lpofn->lpstrFile || lpofn->nMaxFile == 0) {
        state.lastError = CDERR_INITIALIZATION;
        return FALSE;
    }
    state.titles.push_back(lpofn->lpstrTitle ? host::detail::FromW(lpofn->lpstrTitle) : u"Open");
    state.lastError = 0;
    for (;;) {
        std::optional<std::u16string> answer;
        if (host::detail::TakeScriptedFile(&answer)) {
        } else if (!state.answers.empty()) {
            answer = std::move(state.answers.front());
            state.answers.pop_front();
        } else {
            return FALSE;
        }
        if (!answer)
            return FALSE;
        if (!Acceptable(*answer, lpofn->Flags))
            continue;
        if (answer->size() + 1 > lpofn->nMaxFile) {
            // The dialog reports the room it needs in the buffer's first word.
            if (lpofn->nMaxFile >= 2) {
                WORD need = static_cast<WORD>(answer->size() + 1);
                memcpy(lpofn->lpstrFile, &need, sizeof(need));
            }
            state.lastError = FNERR_BUFFERTOOSMALL;
            return FALSE;
        }
        memcpy(lpofn->lpstrFile, answer->c_str(), (answer->size() + 1) * sizeof(WCHAR));
        SetOffsets(lpofn, *answer);
        // The name alone, cut to its buffer as the dialog cuts it.
        if (lpofn->lpstrFileTitle && lpofn->nMaxFileTitle > 0) {
            std::u16string name = answer->substr(lpofn->nFileOffset);
            name.resize(std::min<size_t>(name.size(), lpofn->nMaxFileTitle - 1));
            memcpy(lpofn->lpstrFileTitle, name.c_str(), (name.size() + 1) * sizeof(WCHAR));
        }
        return TRUE;
    }
}

DWORD WINAPI CommDlgExtendedError(void)
{
    host::detail::Lock lock(host::detail::StateMutex());
    return State().lastError;
}

} // extern "C"
