#include "Environment.h"

#include "velm/EnvConfigReader.h"

namespace velmdiag::report {

// The reader leaves the value as it was when the variable is not set.
std::optional<std::string> Variable(const std::string& name) {
    velm::EnvConfigReader reader;
    std::string value = "1";
    std::string other = "2";
    reader.GetIfOk(name, value);
    reader.GetIfOk(name, other);
    return value == other ? std::optional(value) : std::nullopt;
}

}  // namespace velmdiag::report
