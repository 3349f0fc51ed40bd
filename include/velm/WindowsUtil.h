#pragma once

#include <cstddef>
#include <string>

#include "velm/UtilErrorCode.h"

struct HDC__;
struct HINSTANCE__;
struct HWND__;

namespace velm {

/// Windows functions for callers that use UTF-8. All operations are static and keep no state.
///
/// UTF-16 text has one code unit per wchar_t, even where wchar_t has 32 bits. The OEM code page is the
/// system's.
/// Threads: any, unless an operation says otherwise.
class VELM_UTIL_API WindowsUtil {
public:
    // Text conversion. On failure `out` is unchanged.

    /// @{
    /// Converts 8-bit text to UTF-16, including embedded NULs. Invalid bytes become the system's replacement
    /// character.
    /// @return as PathHelper::GetWstringFromString
    static ErrorCode GetWstringFromUtf8String(const std::string& in, std::wstring& out);
    static ErrorCode GetWstringFromOemcpString(const std::string& in, std::wstring& out);
    /// @}

    /// @{
    /// Converts UTF-16 up to its first NUL to 8-bit text. A character that the OEM code page lacks becomes
    /// the closest one it has, or the system's default character; an unpaired surrogate becomes the
    /// replacement character.
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM when the system cannot convert the text, and for 2^31 - 1
    ///         units or more; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    static ErrorCode GetUtf8StringFromWstring(const std::wstring& in, std::string& out);
    static ErrorCode GetOemcpStringFromWstring(const std::wstring& in, std::string& out);
    /// @}

    /// @{
    /// Converts 8-bit text up to its first NUL to the other 8-bit encoding, via UTF-16.
    /// @return 0; otherwise as the conversion that failed
    static ErrorCode GetOemcpStringFromUtf8String(const std::string& in, std::string& out);
    static ErrorCode GetUtf8StringFromOemcpString(const std::string& in, std::string& out);
    /// @}

    /// Converts the platform's text type (TCHAR, UTF-16). Despite the name the result is in the OEM code
    /// page, not UTF-8: the same as GetOemcpStringFromWstring.
    static ErrorCode GetUtf8StringFromTstring(const std::wstring& in, std::string& out);

    /// Copies text of the platform's text type up to its first NUL.
    /// @return 0; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    static ErrorCode GetWStringFromTstring(const std::wstring& in, std::wstring& out);

    // Windows calls. Each wraps the function of the same name without "Call", with UTF-8 strings of any
    // length in place of UTF-16, and returns its result; on failure see GetLastError. If a string is null or
    // cannot be converted, Windows is not called. Thread rules are those of the Windows function.

    /// @return the module; null if it was not loaded or `fileName` could not be converted
    static HINSTANCE__* CallLoadLibrary(const char* fileName);

    /// @param name  a string; resource ids are not supported
    /// @return the image; null if it was not loaded or `name` could not be converted
    static void* CallLoadImage(HINSTANCE__* module, const char* name, unsigned int type, int cx, int cy,
                               unsigned int loadFlags);

    /// Sends a string to the debugger.
    static void CallOutputDebugString(const char* text);

    /// @return the chosen button; 0 when no box was shown
    static int CallMessageBox(HWND__* window, const char* text, const char* caption, unsigned int type);

    /// @param buffer  out: the name in UTF-8, without a NUL; owned by the caller
    /// @param size  size of `buffer` in bytes
    /// @return bytes written, for the name's first `size` - 1 UTF-16 units; 0 when their UTF-8 does not fit,
    ///         or when there is no such window
    static int CallGetClassName(HWND__* window, char* buffer, int size);

    /// @param buffer  out: the value in UTF-16, NUL-terminated; owned by the caller
    /// @param size  size of `buffer` in UTF-16 units
    /// @return units written, without the NUL; 0, with `buffer` unchanged, when a string is null or cannot be
    ///         converted: sections and keys cannot be listed
    static unsigned long CallGetPrivateProfileString(const char* section, const char* key,
                                                     const char* defaultText, wchar_t* buffer,
                                                     unsigned long size, const char* fileName);

    /// @return the number; `defaultValue`, or 0 if that is negative, when a string was not converted
    static unsigned int CallGetPrivateProfileInt(const char* section, const char* key, int defaultValue,
                                                 const char* fileName);

    /// @param count  number of UTF-16 units to draw; the converted text must have at least as many
    /// @return nonzero when the text was drawn
    static int CallTextOut(HDC__* context, int x, int y, const char* text, int count);

    /// @return nonzero when the text was set
    static int CallSetWindowText(HWND__* window, const char* text);

    /// @param module  null for the executable
    /// @param buffer  out: the path in UTF-8, NUL-terminated; the NUL overwrites the last byte of a path that
    ///                fills the buffer; owned by the caller
    /// @param size  size of `buffer` in bytes
    /// @return bytes of the path; 0 when it does not fit. A path over 259 UTF-16 units is truncated.
    static unsigned long CallGetModuleFileName(HINSTANCE__* module, char* buffer, unsigned long size);

    // UTF-8 paths relative to the folder of the executable. On failure the result is unchanged.

    /// Gets the path of a file in the executable's folder.
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM when the executable's path is unavailable or longer than 260
    ///         bytes; the failure of PathHelper::GetFileDir; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    static ErrorCode GetFullPathForExecDirFile(std::string& path, const std::string& fileName);

    /// @param buffer  out: the path, NUL-terminated; owned by the caller
    /// @param size  size of `buffer` in bytes
    /// @return as above; VELM_ERROR_UTIL_INVALID_PARAM also for a null argument or a `size` of 0;
    ///         VELM_ERROR_UTIL_DATA_LENGTH when path and NUL do not fit
    static ErrorCode GetFullPathForExecDirFile(char* buffer, std::size_t size, const char* fileName);

    /// Gets the folder "resources\" in the executable's folder, with the backslash.
    /// @return as GetFullPathForExecDirFile
    static ErrorCode GetFullPathForResourcesDir(std::string& path);

    /// Gets the path of a file in that folder.
    /// @return as GetFullPathForExecDirFile
    static ErrorCode GetFullPathForResourcesDirFile(std::string& path, const std::string& fileName);

    /// Gets the largest width and, independently, the largest height of the displays attached to the desktop.
    /// Only the first 16 display devices count.
    /// @param width, height  out: in pixels; 0 when there is no display
    /// @param stateFlags  further DISPLAY_DEVICE_ flags that a display must have; 0 for none
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM when `width` or `height` is null
    static ErrorCode GetMaxScreenSize(int* width, int* height, unsigned long stateFlags);

private:
    template <std::size_t count>
    class WideTexts;

    static ErrorCode GetWstringFromString(unsigned int codePage, const std::string& in, std::wstring& out);
    static ErrorCode GetStringFromWstring(const std::wstring& in, unsigned int codePage, std::string& out);

    /// Converts 8-bit text to a new UTF-16 buffer and appends a NUL.
    /// @param out  out: the buffer, freed by the caller with delete[]; null on failure
    /// @param outLength  out: the units converted, without the appended NUL; may be null
    /// @param inLength  in bytes; -1 for NUL-terminated text, whose NUL then counts in `outLength`
    /// @return whether the conversion succeeded; an `inLength` of 0 fails
    static bool ConvertToWideChar(unsigned int codePage, wchar_t** out, int* outLength, const char* in,
                                  int inLength);
};

}  // namespace velm
