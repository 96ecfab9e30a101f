// The shell's {{slots}} are filled in one pass. The policy allows only the page's own style and
// script by their hashes, so even a name that slipped past escaping could run nothing.
#include "ReportPage.h"

#include "ReportWeb.h"

namespace kvt::profiling {

namespace {

std::string contentPolicy() {
  return std::string("default-src 'none'; script-src 'sha256-") + reportScriptTextSha256 +
         "'; style-src 'sha256-" + reportStyleTextSha256 +
         "'; img-src data:; base-uri 'none'; form-action 'none'";
}

std::string describeLogs(const std::vector<PageLog>& logs, std::string_view pairJoin) {
  std::string text;
  for (size_t i = 0; i < logs.size(); ++i) {
    if (i)
      text += logs.size() == 2 ? pairJoin : ", ";
    text += "<span class=\"log\">" + escapeHtml(logs[i].path) + "</span>";
    if (!logs[i].created.empty())
      text += " <span class=\"date\">(" + escapeHtml(logs[i].created) + ")</span>";
  }
  return text;
}

} // namespace

std::string escapeHtml(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
    case '&':
      escaped += "&amp;";
      break;
    case '<':
      escaped += "&lt;";
      break;
    case '>':
      escaped += "&gt;";
      break;
    case '"':
      escaped += "&quot;";
      break;
    case '\'':
      escaped += "&#39;";
      break;
    default:
      escaped += c;
    }
  }
  return escaped;
}

void writeReportPage(std::ostream& out, std::string_view title, const std::vector<PageLog>& logs,
                     std::string_view pairJoin, std::string_view data) {
  const std::string_view shell = reportShellText;
  size_t done = 0;
  for (size_t open = shell.find("{{"); open != std::string_view::npos;
       open = shell.find("{{", done)) {
    const size_t close = shell.find("}}", open);
    const std::string_view slot = shell.substr(open + 2, close - open - 2);
    out << shell.substr(done, open - done);
    if (slot == "policy")
      out << contentPolicy();
    else if (slot == "title")
      out << escapeHtml(title);
    else if (slot == "logs")
      out << describeLogs(logs, pairJoin);
    else if (slot == "style")
      out << reportStyleText;
    else if (slot == "script")
      out << reportScriptText;
    else if (slot == "data")
      out << data;
    done = close + 2;
  }
  out << shell.substr(done);
}

} // namespace kvt::profiling
