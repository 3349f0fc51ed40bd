#include "velm/UtilErrorCode.h"

#include "velm/core/ErrorRegistry.h"

namespace velm {
namespace {

constexpr char kFacility[] = "VELM_FACILITY_UTIL";

constexpr ErrorCodeInfo kCodes[] = {
    {VELM_ERROR_UTIL_UNKNOWN, kFacility, "VELM_ERROR_UTIL_UNKNOWN"},
    {VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY, kFacility, "VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY"},
    {VELM_ERROR_UTIL_INVALID_PARAM, kFacility, "VELM_ERROR_UTIL_INVALID_PARAM"},
    {VELM_ERROR_UTIL_ILLEGAL_CALL, kFacility, "VELM_ERROR_UTIL_ILLEGAL_CALL"},
    {VELM_ERROR_UTIL_NOT_INITIALIZED, kFacility, "VELM_ERROR_UTIL_NOT_INITIALIZED"},
    {VELM_ERROR_UTIL_ALREADY_EXIST, kFacility, "VELM_ERROR_UTIL_ALREADY_EXIST"},
    {VELM_ERROR_UTIL_NOT_EXIST, kFacility, "VELM_ERROR_UTIL_NOT_EXIST"},
    {VELM_ERROR_UTIL_DATA_LENGTH, kFacility, "VELM_ERROR_UTIL_DATA_LENGTH"},
    {VELM_ERROR_UTIL_D3D9_FAILED, kFacility, "VELM_ERROR_UTIL_D3D9_FAILED"},
    {VELM_ERROR_UTIL_DATA_BROKEN, kFacility, "VELM_ERROR_UTIL_DATA_BROKEN"},
};

/// Registers the codes while the library loads.
const struct Registration {
    Registration() {
        for (const ErrorCodeInfo& info : kCodes) {
            RegisterErrorCode(info.code, info.facility, info.name);
        }
    }
} g_registration;

}  // namespace
}  // namespace velm
