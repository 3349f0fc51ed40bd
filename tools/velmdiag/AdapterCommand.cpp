#include <memory>
#include <optional>
#include <vector>

#include "AdapterRules.h"
#include "Command.h"
#include "Help.h"
#include "Report.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/FileReader.h"
#include "velm/platform/Direct3D.h"

namespace velmdiag {
namespace {

constexpr std::size_t kLargestRuleFile = 1024 * 1024;

struct AdapterOptions {
    std::optional<unsigned int> index;
    std::optional<std::string> rules;
    bool json = false;
};

std::string ReadRuleFile(const std::string& path) {
    velm::FileReader reader;
    std::string text(kLargestRuleFile + 1, '\0');
    unsigned long long size = 0;
    velm::ErrorCode result = reader.Open(path.c_str());
    if (!result.IsFailed()) {
        result = reader.Read(&size, text.data(), text.size());
    }
    if (!result.IsFailed()) {
        throw Failure{path + ": is larger than 1 MiB", kNotDone};
    }
    if (result != velm::VELM_ERROR_CORE_END_OF_DATA) {
        CheckFile(path, result, kNotDone);
    }
    text.resize(size);
    return text;
}

std::vector<AdapterRule> ReadRules(const std::string& path) {
    try {
        return ReadAdapterRules(ReadRuleFile(path));
    } catch (const RuleError& error) {
        throw Failure{path + ": " + error.what(), kNotDone};
    }
}

/// Checks the rules and reports the verdict: whether the adapter is accepted.
bool Judge(const std::vector<AdapterRule>& rules, velm::D3d9AdapterContext& context, Report& report) {
    velm::D3d9AdapterCheckSet set;
    for (const AdapterRule& rule : rules) {
        set.AddItem(rule.item);
    }
    std::tr1::shared_ptr<velm::D3d9AdapterCheckItem> failed;
    set.BindNotifyError(
        [](void* user, velm::D3d9AdapterContext*, std::tr1::shared_ptr<velm::D3d9AdapterCheckItem> item) {
            *static_cast<std::tr1::shared_ptr<velm::D3d9AdapterCheckItem>*>(user) = item;
        },
        &failed);
    bool passed = false;
    const velm::ErrorCode result = set.Check(&passed, &context);
    if (result.IsFailed()) {
        throw Failure{"the rules cannot be checked: " + Describe(result), kNotDone};
    }
    report.Add("verdict", passed ? "accepted" : "refused");
    for (std::size_t i = 0; i < rules.size(); ++i) {
        if (rules[i].item == failed) {
            const velm::D3d9AdapterCommand& command = CommandOf(*failed);
            report.Add("failed_rule", static_cast<long long>(i) + 1);
            report.Add("failed_rule_text", rules[i].text);
            report.Add("fact_met", FactValue(command, context), FactText(command, context));
        }
    }
    return passed;
}

velm::D3d9AdapterContext ReadFacts(IDirect3D9* d3d, unsigned int adapter) {
    velm::D3d9AdapterContext context;
    const velm::ErrorCode result = context.Setup(d3d, adapter);
    CheckFile("adapter " + std::to_string(adapter), result, kNotDone);
    return context;
}

void AddFacts(const velm::D3d9AdapterContext& context, Report& report) {
    report.Add("adapter", static_cast<long long>(context.m_nAdapter));
    report.Add("description", context.m_identifier.Description);
    report.Add("driver", context.m_identifier.Driver);
    for (const velm::D3d9AdapterCommand& command : velm::kD3d9AdapterCommands) {
        report.Add(command.name, FactValue(command, context), FactText(command, context));
    }
}

int RunAdapter(const AdapterOptions& options) {
    std::optional<std::vector<AdapterRule>> rules;
    if (options.rules) {
        rules = ReadRules(*options.rules);
    }
    const auto d3d = velm::platform::CreateDirect3D9();
    if (d3d == nullptr) {
        throw Failure{"this system has no Direct3D 9", kNotDone};
    }
    const unsigned int count = d3d->GetAdapterCount();
    if (options.index.value_or(0) >= count) {
        throw Failure{"there is no adapter " + std::to_string(options.index.value_or(0)) + "; there are " +
                          std::to_string(count),
                      kNotDone};
    }
    const unsigned int first = options.index.value_or(0);
    const unsigned int end = options.index ? first + 1 : count;
    bool accepted = true;
    std::vector<Report> reports(end - first);
    for (unsigned int adapter = first; adapter < end; ++adapter) {
        velm::D3d9AdapterContext context = ReadFacts(d3d.get(), adapter);
        AddFacts(context, reports[adapter - first]);
        if (rules) {
            accepted = Judge(*rules, context, reports[adapter - first]) && accepted;
        }
    }
    Report::PrintList("adapters", reports, options.json);
    return accepted ? 0 : 1;
}

}  // namespace

void AddAdapterCommand(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<AdapterOptions>();
    CLI::App* const command =
        app.add_subcommand("adapter", "Shows display adapters and checks them by rules");
    Explain(command,
            "Shows the facts about each Direct3D 9 adapter and, with a rule file, whether it is "
            "accepted, or which rule it failed first and the fact that rule met.\nEnds with 0 when "
            "every adapter shown is accepted, 1 when one is refused, 2 when that could not be found "
            "out.",
            "velmdiag adapter --index 0 --rules adapter-rules.json");
    command->add_option("--index", options->index, "show this adapter only; 0 is the first");
    command->add_option("--rules", options->rules, "check the adapters by this rule file");
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunAdapter(*options); });
}

}  // namespace velmdiag
