// Changes a launcher's resources in its file, as another skin would have them.
// Usage: Reskin LAUNCHER.exe [string ID TEXT | bitmap ID FILE.bmp]...; "" takes the resource out.
#include <windows.h>

#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <utility>

namespace {

// Type and number, content. All of a launcher's resources have numbers and no language.
using CResources = std::map<std::pair<const char *, const char *>, std::string>;

BOOL CALLBACK VisitName(HMODULE hModule, const char *type, char *name, LONG_PTR resources)
{
    const HRSRC hResource = FindResourceA(hModule, name, type);
    const void *data = LockResource(LoadResource(hModule, hResource));
    reinterpret_cast<CResources *>(resources)->insert(
        {{type, name}, {static_cast<const char *>(data), SizeofResource(hModule, hResource)}});
    return TRUE;
}

BOOL CALLBACK VisitType(HMODULE hModule, char *type, LONG_PTR resources)
{
    return EnumResourceNamesA(hModule, type, VisitName, resources);
}

// A block holds the sixteen strings from (number - 1) * 16 on, each behind its length.
void SetString(CResources &resources, UINT nID, const std::string &text)
{
    const auto key =
        std::make_pair<const char *, const char *>(RT_STRING, MAKEINTRESOURCEA(nID / 16 + 1));
    std::string old = resources[key];
    old.resize(old.size() + 16 * sizeof(wchar_t));  // none of these strings, if there is no block
    std::wstring block;
    bool bAny = false;
    const auto *p = reinterpret_cast<const wchar_t *>(old.data());
    for (UINT i = 0; i < 16; p += 1 + *p, ++i) {
        const std::wstring now =
            i == nID % 16 ? std::wstring(text.begin(), text.end()) : std::wstring(p + 1, *p);
        block += static_cast<wchar_t>(now.size()) + now;
        bAny |= !now.empty();
    }
    if (bAny)
        resources[key].assign(reinterpret_cast<const char *>(block.data()),
                              block.size() * sizeof(wchar_t));
    else
        resources.erase(key);
}

void SetBitmap(CResources &resources, UINT nID, const std::string &path)
{
    const auto key = std::make_pair<const char *, const char *>(RT_BITMAP, MAKEINTRESOURCEA(nID));
    std::ifstream file(path, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    if (path.empty())
        resources.erase(key);
    else
        resources[key] = bytes.substr(sizeof(BITMAPFILEHEADER));
}

}  // namespace

int main(int argc, char **argv)
{
    CResources resources;
    const HMODULE hModule = LoadLibraryExA(argv[1], nullptr, LOAD_LIBRARY_AS_DATAFILE);
    EnumResourceTypesA(hModule, VisitType, reinterpret_cast<LONG_PTR>(&resources));
    FreeLibrary(hModule);
    for (int i = 2; i + 2 < argc; i += 3) {
        const auto set = std::string(argv[i]) == "bitmap" ? SetBitmap : SetString;
        set(resources, static_cast<UINT>(std::stoi(argv[i + 1])), argv[i + 2]);
    }

    // All anew: Wine 8 leaves an empty resource where one is taken out.
    const HANDLE hUpdate = BeginUpdateResourceA(argv[1], TRUE);
    bool bGood = !resources.empty();
    for (auto &resource : resources)
        bGood = UpdateResourceA(hUpdate, resource.first.first, resource.first.second, LANG_NEUTRAL,
                                &resource.second[0], static_cast<DWORD>(resource.second.size())) &&
                bGood;
    return EndUpdateResourceA(hUpdate, FALSE) && bGood ? 0 : 1;
}
