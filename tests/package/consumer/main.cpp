#include <velm/core/ErrorRegistry.h>
#include <velm/VelmUtil.h>

#include <cstdio>
#include <cstring>
#include <string>

/// Touches what crosses the border of the library: its codes, a picojson value, Windows' types, a callback.
int main() {
    const velm::ErrorCodeInfo* const code = velm::FindErrorCode(velm::VELM_ERROR_UTIL_DATA_BROKEN);
    if (code == nullptr || std::strcmp(code->name, "VELM_ERROR_UTIL_DATA_BROKEN") != 0) {
        std::puts("the library did not register its codes");
        return 1;
    }
    velm::JsonConfigReader json;
    picojson::value value;
    std::string error;
    json.Read("{\"vendor\": \"Intel\"}");
    if (!json.getJsonValue(value, error)) {
        std::puts(error.c_str());
        return 1;
    }
    velm::D3d9AdapterCheckItem rule;
    rule.SetAsString(velm::D3D9_ADAPTER_CHECK_VENDOR_NAME, velm::D3D9_ADAPTER_COMPARE_EQUAL,
                     value.get("vendor").get<std::string>().c_str());
    std::printf("rule: vendor is %s\n", rule.ValueToString().c_str());
    return rule.CheckAsString("Intel") && !rule.CheckAsString("AMD") ? 0 : 1;
}
