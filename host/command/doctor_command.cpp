#include <fmt/format.h>
#include <host/command/awaiting.h>
#include <host/command/doctor_command.h>
#include <host/services/late_system_services.h>
#include <host/services/system_report_service.h>
#include <host/terminal/json_object.h>
#include <host/terminal/table.h>

#include <utility>

namespace kestrel::host {
namespace {

std::string reportJSON(const platform::SystemReport& report) {
    std::vector<std::string> findings;
    for (const auto& finding : report.findings) {
        JSONObject object;
        object.add("area", finding.area)
            .add("subject", finding.subject)
            .add("value", finding.value)
            .add("source", finding.source);
        if (finding.advice) object.add("advice", *finding.advice);
        findings.push_back(object.json());
    }
    return JSONObject().addJSON("findings", JSONObject::array(findings)).json();
}

}  // namespace

void doctorCommand(bool isJSON, Output& output, const Terminal& terminal) {
    const Runtime runtime(LateSystemServicesModule{});
    const platform::SystemReport report = awaited(runtime[host_services::systemReport].fetchReport()).value().at(0);
    if (isJSON) return writeJSONLine(reportJSON(report), output, terminal);
    std::string area;
    Table table(3);
    std::string advice;
    std::string text;
    const auto finishArea = [&] {
        if (table.isEmpty()) return;
        text += styled(area, boldStyle, terminal) + "\n" + table.rendered(terminal, 2) + std::exchange(advice, {});
        table = Table(3);
    };
    for (const auto& finding : report.findings) {
        if (finding.area != area) finishArea();
        area = finding.area;
        table.add({finding.subject, finding.value, finding.source});
        if (finding.advice)
            advice += fmt::format("  → {}: {}\n", printable(finding.subject), printable(*finding.advice));
    }
    finishArea();
    output.write(text);
}

}  // namespace kestrel::host
