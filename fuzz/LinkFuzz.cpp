// UrlSchemeUtil::read on arbitrary input: the first line is the caller's address, the rest the link.
#include "Fuzz.h"
#include "velm/UrlSchemeUtil.h"

namespace {

std::string HostOf(const std::string& address) {
    const std::size_t begin = address.find("://") + 3;
    return address.substr(begin, address.find_first_of(":/", begin) - begin);
}

bool IsAcceptedHost(const std::string& host) {
    return host == "localhost" || host == "127.0.0.1" || host == "play.velm.example" ||
           host == "stage.velm.example" || host.ends_with(".play.velm.example") ||
           host.ends_with(".stage.velm.example") || host.ends_with(".edge.velm.example");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = TextOf(data, size);
    const std::string before = input.substr(0, input.find('\n'));
    const std::string link = before.size() < input.size() ? input.substr(before.size() + 1) : "";
    std::string address = before;
    std::string title = "old";
    std::string ticket = "old";
    if (velm::UrlSchemeUtil::read(link, address, title, ticket) != 0U) {
        return 0;
    }
    VELM_FUZZ_DEMAND(velm::UrlSchemeUtil::checkPavix(address) == 0U);
    VELM_FUZZ_DEMAND(address.starts_with("http://") || address.starts_with("https://"));
    VELM_FUZZ_DEMAND(address.find_first_of(std::string("@?#;\\ \r\n\0", 9)) == address.npos);
    VELM_FUZZ_DEMAND(IsAcceptedHost(HostOf(address)));
    // The link consists of its parts and nothing else.
    const std::string body = address.substr(address.find("://") + 3);
    const std::string tail = "?title=" + title + "&ticket=" + ticket;
    const bool isResume = link == "velm://resume" + tail && address == before;
    VELM_FUZZ_DEMAND(isResume || link == "velm://connect/" + body + tail ||
                     link == "velm:" + body + ";" + title + ";" + ticket);
    return 0;
}
