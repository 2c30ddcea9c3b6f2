#include <CLI/CLI.hpp>
#include <boost/algorithm/string/replace.hpp>

#include "cli/help/HelpPages.h"

namespace Norvik::Cli {

namespace {

/// As text of a page: a backslash, a hyphen that is one, and no request at the start of a line.
std::string Roff(std::string text) {
  boost::replace_all(text, "\\", "\\e");
  boost::replace_all(text, "-", "\\-");
  boost::replace_all(text, "\n.", "\n\\&.");
  boost::replace_all(text, "\n'", "\n\\&'");
  return text;
}

/// "\fB--data\fR \fIDIR\fR"
std::string NameOf(const CLI::Option& option) {
  const bool isFlag = option.get_items_expected_max() == 0;
  if (option.get_positional()) return "\\fI" + Roff(option.get_name(true)) + "\\fR";
  const std::string name = "\\fB" + Roff(option.get_name(false, true)) + "\\fR";
  return isFlag ? name : name + " \\fI" + Roff(ValueNameOf(option)) + "\\fR";
}

std::string OptionsOf(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* option : app.get_options()) {
    text += ".TP\n" + NameOf(*option) + "\n" + Roff(option->get_description()) + "\n";
  }
  return text;
}

/// "\fBopen\fR [\fB--pretty\fR] \fIFILE\fR"
std::string UseOf(const CLI::App& command) {
  std::string optional, positional;
  for (const CLI::Option* option : command.get_options()) {
    if (option == command.get_help_ptr()) continue;
    const std::string name = NameOf(*option);
    const std::string several = option->get_items_expected_max() > 1 ? "..." : "";
    if (option->get_positional()) {
      positional += option->get_required() ? " " + name : " [" + name + several + "]";
    } else {
      optional += " [" + name + "]";
    }
  }
  return "\\fB" + Roff(command.get_name()) + "\\fR" + optional + positional;
}

}  // namespace

std::string ValueNameOf(const CLI::Option& option) {
  const std::string name = option.get_type_name();
  return name.substr(0, name.find(':'));
}

std::string ManualOf(const CLI::App& program) {
  const std::string& name = program.get_name();
  std::string text = ".TH NORVIK\\-AGENT 1 \"\" \"" + name + "\" \"User Commands\"\n";
  text += ".SH NAME\n" + Roff(name) + " \\- " + Roff(program.get_description()) + "\n";
  text += ".SH SYNOPSIS\n.B " + Roff(name) + "\n[options] command [arguments]\n.SH COMMANDS\n";
  for (const CLI::App* command : program.get_subcommands({})) {
    text += ".SS \"" + UseOf(*command) + "\"\n" + Roff(command->get_description()) + "\n";
    for (const CLI::Option* option : command->get_options()) {
      if (option == command->get_help_ptr()) continue;
      text += ".TP\n" + NameOf(*option) + "\n" + Roff(option->get_description()) + "\n";
    }
    const std::string footer = command->get_footer();
    const auto examples = footer.substr(0, footer.rfind("\n\n"));
    text += ".PP\n.nf\n" + Roff(examples) + "\n.fi\n";
  }
  text += ".SH OPTIONS\n" + OptionsOf(program);
  text += ".SH \"EXIT STATUS\"\n0 on success, 1 on failure, 2 on wrong use\n";
  text += ".SH NOTES\n.nf\n" + Roff(program.get_footer()) + "\n.fi\n";
  return text;
}

}  // namespace Norvik::Cli
