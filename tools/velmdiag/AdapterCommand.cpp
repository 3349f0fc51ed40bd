#include "AdapterReport.h"

#include <picojson.h>

#include <memory>
#include <new>
#include <utility>

#include "Command.h"
#include "Help.h"
#include "velm/D3d9AdapterRules.h"
#include "velm/platform/Direct3D.h"

namespace velmdiag {
namespace {

struct AdapterOptions {
    std::optional<unsigned int> index;
    std::optional<std::string> rules;
    bool json = false;
};

void ReadRules(const std::string& path, velm::D3d9AdapterRules& rules) {
    const velm::ErrorCode result = rules.ReadFile(path.c_str());
    if (result != velm::VELM_ERROR_UTIL_DATA_BROKEN) {
        CheckFile(path, result, kNotDone);
        return;
    }
    std::string place = path;
    if (rules.GetErrorLine() != 0) {
        place += ':' + std::to_string(rules.GetErrorLine()) + ':' + std::to_string(rules.GetErrorColumn());
    }
    throw Failure{place + ": " + rules.GetErrorMessage(), kNotDone};
}

std::string FactText(velm::D3d9AdapterCheckCommand command, const velm::D3d9AdapterContext& context) {
    std::string text;
    if (velm::D3d9AdapterRules::GetFactText(text, &context, command).IsFailed()) {
        throw std::bad_alloc();
    }
    return text;
}

/// A fact in the form in which a rule gives its value.
picojson::value FactValue(velm::D3d9AdapterCheckCommand command, const velm::D3d9AdapterContext& context) {
    const std::string text = FactText(command, context);
    velm::D3d9AdapterParamType type{};
    velm::D3d9AdapterCheckSet::GetCommandType(&type, command);
    if (type == velm::D3D9_ADAPTER_PARAM_DWORD || type == velm::D3D9_ADAPTER_PARAM_UINT) {
        return picojson::value(static_cast<double>(std::stoull(text, nullptr, 0)));
    }
    return picojson::value(text);
}

/// Checks the rules and reports the verdict.
/// @return whether the adapter is accepted
bool CheckRules(const velm::D3d9AdapterRules& rules, velm::D3d9AdapterContext& context, Report& report) {
    velm::D3d9AdapterCheckSet set;
    if (rules.AddTo(&set).IsFailed()) {
        throw std::bad_alloc();
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
    for (unsigned int i = 0; i < rules.GetCount(); ++i) {
        if (rules.GetItem(i) == failed) {
            const velm::D3d9AdapterCheckCommand command = failed->GetCommand();
            report.Add("failed_rule", static_cast<long long>(i) + 1);
            report.Add("failed_rule_text", rules.GetText(i));
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
    for (int i = 0;; ++i) {
        const auto command = static_cast<velm::D3d9AdapterCheckCommand>(i);
        const char* const name = velm::D3d9AdapterRules::GetFactName(command);
        if (name == nullptr) {
            break;
        }
        report.Add(name, FactValue(command, context), FactText(command, context));
    }
}

int RunAdapter(const AdapterOptions& options) {
    bool accepted = true;
    std::vector<Report> reports;
    for (AdapterReport& adapter : ReportAdapters(options.index, options.rules)) {
        accepted = accepted && adapter.accepted;
        reports.push_back(std::move(adapter.facts));
    }
    Report::PrintList("adapters", reports, options.json);
    return accepted ? 0 : 1;
}

}  // namespace

void CheckRuleFile(const std::string& path) {
    velm::D3d9AdapterRules rules;
    ReadRules(path, rules);
}

std::vector<AdapterReport> ReportAdapters(const std::optional<unsigned int>& index,
                                          const std::optional<std::string>& rulesPath) {
    velm::D3d9AdapterRules rules;
    if (rulesPath) {
        ReadRules(*rulesPath, rules);
    }
    const auto d3d = velm::platform::CreateDirect3D9();
    if (d3d == nullptr) {
        throw Failure{"this system has no Direct3D 9", kNotDone};
    }
    const unsigned int count = d3d->GetAdapterCount();
    if (index.value_or(0) >= count) {
        throw Failure{"there is no adapter " + std::to_string(index.value_or(0)) + "; the system has " +
                          std::to_string(count),
                      kNotDone};
    }
    const unsigned int first = index.value_or(0);
    const unsigned int end = index ? first + 1 : count;
    std::vector<AdapterReport> reports(end - first);
    for (unsigned int adapter = first; adapter < end; ++adapter) {
        velm::D3d9AdapterContext context = ReadFacts(d3d.get(), adapter);
        AdapterReport& report = reports[adapter - first];
        AddFacts(context, report.facts);
        report.accepted = !rulesPath || CheckRules(rules, context, report.facts);
    }
    return reports;
}

void AddAdapterCommand(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<AdapterOptions>();
    CLI::App* const command =
        app.add_subcommand("adapter", "Shows display adapters and checks them against rules");
    Explain(command,
            "Shows the facts about each Direct3D 9 adapter and, with a rule file, whether it is accepted or "
            "which rule failed first, with the fact that failed it.\nThe exit status is 0 if every adapter "
            "shown is accepted, 1 if one is refused, 2 if the check was not possible.",
            "velmdiag adapter --index 0 --rules adapter-rules.json");
    command->add_option("--index", options->index, "show this adapter only; 0 is the first");
    command->add_option("--rules", options->rules, "check the adapters against this rule file")
        ->type_name(kFileType);
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunAdapter(*options); });
}

}  // namespace velmdiag
