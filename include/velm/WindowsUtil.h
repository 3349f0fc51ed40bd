#pragma once

#include <cstddef>
#include <string>

#include "velm/UtilErrorCode.h"

struct HDC__;
struct HINSTANCE__;
struct HWND__;

namespace velm {

/// Windows for callers that hold their text as UTF-8. All operations are static and keep nothing between
/// calls.
///
/// UTF-16 text is one unit in each wchar_t, also where wchar_t is wider. The OEM code page is the system's.
/// Threads: any number at once, but for what an operation says of itself.
class VELM_UTIL_API WindowsUtil {
public:
    // Text. All of these leave `out` as it was when they fail.

    /// @{
    /// Converts 8-bit text to UTF-16, NULs inside it included. Bytes that form no character become the
    /// system's replacement for them.
    /// @return 0; the codes of PathHelper::GetWstringFromString
    static ErrorCode GetWstringFromUtf8String(const std::string& in, std::wstring& out);
    static ErrorCode GetWstringFromOemcpString(const std::string& in, std::wstring& out);
    /// @}

    /// @{
    /// Converts UTF-16 up to its first NUL to 8-bit text. What the OEM code page has no form for becomes the
    /// closest character that it has, or the system's default character; an unpaired surrogate becomes the
    /// replacement character.
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM when the system refuses the text, and for text of 2^31 - 1
    ///         units or more; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    static ErrorCode GetUtf8StringFromWstring(const std::wstring& in, std::string& out);
    static ErrorCode GetOemcpStringFromWstring(const std::wstring& in, std::string& out);
    /// @}

    /// @{
    /// Converts 8-bit text up to its first NUL to the other 8-bit encoding, by way of UTF-16.
    /// @return as the conversion that failed
    static ErrorCode GetOemcpStringFromUtf8String(const std::string& in, std::string& out);
    static ErrorCode GetUtf8StringFromOemcpString(const std::string& in, std::string& out);
    /// @}

    /// Converts text of the platform's text interface, which is UTF-16. The result is in the OEM code page,
    /// not in UTF-8: it is that of GetOemcpStringFromWstring.
    static ErrorCode GetUtf8StringFromTstring(const std::wstring& in, std::string& out);

    /// Copies text of the platform's text interface up to its first NUL.
    /// @return 0; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    static ErrorCode GetWStringFromTstring(const std::wstring& in, std::wstring& out);

    // Windows' calls. Each takes UTF-8 where its namesake without "Call" takes UTF-16, and returns what that
    // returns; GetLastError then says why it failed. A text that cannot be converted, null included, keeps
    // the call from being made. Texts may be of any length. The thread rules are those of the Windows call.

    /// @return the module; null when it was not loaded or `fileName` not converted
    static HINSTANCE__* CallLoadLibrary(const char* fileName);

    /// @param name  a text; a resource number cannot be given
    /// @return the image; null when it was not loaded or `name` not converted
    static void* CallLoadImage(HINSTANCE__* module, const char* name, unsigned int type, int cx, int cy,
                               unsigned int loadFlags);

    /// Shows a text in the debugger.
    static void CallOutputDebugString(const char* text);

    /// @return the button that was chosen; 0 when no box was shown
    static int CallMessageBox(HWND__* window, const char* text, const char* caption, unsigned int type);

    /// @param buffer  receives the name in UTF-8, without a NUL; the caller's, `size` bytes long
    /// @return the bytes written, of the name's first `size` - 1 UTF-16 units; 0 when their UTF-8 does not
    ///         fit or there is no such window
    static int CallGetClassName(HWND__* window, char* buffer, int size);

    /// @param buffer  receives the value in UTF-16; the caller's, `size` units long
    /// @return the units written, without the NUL; 0, and `buffer` untouched, when a text was not converted,
    ///         null included: sections and keys cannot be listed
    static unsigned long CallGetPrivateProfileString(const char* section, const char* key,
                                                     const char* defaultText, wchar_t* buffer,
                                                     unsigned long size, const char* fileName);

    /// @return the number; when a text was not converted, `defaultValue`, or 0 for a negative one
    static unsigned int CallGetPrivateProfileInt(const char* section, const char* key, int defaultValue,
                                                 const char* fileName);

    /// @param count  of UTF-16 units that are drawn; the converted text must have as many
    /// @return not 0 when the text was drawn
    static int CallTextOut(HDC__* context, int x, int y, const char* text, int count);

    /// @return not 0 when the text was set
    static int CallSetWindowText(HWND__* window, const char* text);

    /// @param module  null for the executable
    /// @param buffer  receives the path in UTF-8 and a NUL, which takes the place of the last byte when the
    ///                path fills the buffer; the caller's, `size` bytes long
    /// @return the bytes of the path; 0 when it does not fit. A path longer than 259 UTF-16 units is cut.
    static unsigned long CallGetModuleFileName(HINSTANCE__* module, char* buffer, unsigned long size);

    // Paths in UTF-8, below the folder of the process's executable. On failure the result is unchanged.

    /// The path of a file beside the executable.
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM when the executable's path cannot be had, or takes more than
    ///         260 bytes; the code of PathHelper::GetFileDir; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    static ErrorCode GetFullPathForExecDirFile(std::string& path, const std::string& fileName);

    /// @param buffer  receives the path and a NUL; the caller's, `size` bytes long
    /// @return as above; VELM_ERROR_UTIL_INVALID_PARAM also for a null argument or a `size` of 0;
    ///         VELM_ERROR_UTIL_DATA_LENGTH when path and NUL do not fit
    static ErrorCode GetFullPathForExecDirFile(char* buffer, std::size_t size, const char* fileName);

    /// The folder "resources\" beside the executable, with the backslash.
    /// @return as GetFullPathForExecDirFile
    static ErrorCode GetFullPathForResourcesDir(std::string& path);

    /// The path of a file in that folder.
    /// @return as GetFullPathForExecDirFile
    static ErrorCode GetFullPathForResourcesDirFile(std::string& path, const std::string& fileName);

    /// The largest width and the largest height in pixels, each on its own, among the first 16 display
    /// devices, as far as these are attached to the desktop; 0 when there is none.
    /// @param stateFlags  DISPLAY_DEVICE_ flags that a display must have too; 0 for any
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM when `width` or `height` is null
    static ErrorCode GetMaxScreenSize(int* width, int* height, unsigned long stateFlags);

private:
    template <std::size_t count>
    class WideTexts;

    static ErrorCode GetWstringFromString(unsigned int codePage, const std::string& in, std::wstring& out);
    static ErrorCode GetStringFromWstring(const std::wstring& in, unsigned int codePage, std::string& out);

    /// Converts 8-bit text to a new buffer of UTF-16 with a NUL after it.
    /// @param out  receives the buffer, or null; the caller frees it with delete[]
    /// @param outLength  null, or receives the units converted, without the NUL that is added
    /// @param inLength  in bytes; -1 for NUL-terminated text, whose NUL then counts in `outLength` too
    /// @return whether it could be converted; no text at all cannot
    static bool ConvertToWideChar(unsigned int codePage, wchar_t** out, int* outLength, const char* in,
                                  int inLength);
};

}  // namespace velm
