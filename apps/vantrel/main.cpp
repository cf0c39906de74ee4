// vantrel: the command line of the Vantrel trace viewer.

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "check_command.h"
#include "controller_command.h"
#include "crypt_command.h"
#include "duration_option.h"
#include "history_command.h"
#include "host_options.h"
#include "run_command.h"

int main(int argc, char** argv) {
  CLI::App app{"Vantrel: trace viewer for industrial controllers", "vantrel"};
  app.require_subcommand(1);

  vantrel::cli::RunOptions run;
  CLI::App* runCommand =
      app.add_subcommand("run", "Read a controller's trace and print each record as a row");
  vantrel::hosts::AddHostOptions(*runCommand, run);
  runCommand->add_flag("--export-on-exit", run.exportOnExit, "Export the table when stopping");
  runCommand->add_option("--records", run.records, "Stop after this many rows")
      ->check(CLI::NonNegativeNumber);
  runCommand->add_option("--duration", run.durationSeconds, "Stop after this many seconds")
      ->check(vantrel::cli::DurationSeconds());
  runCommand->add_option("--events", run.eventsFile,
                         "Write every event as a JSON line to this file ('-' for stdout)");
  auto* yes = runCommand->add_flag("--yes", run.yes, "Answer Yes when asked to search a file");
  bool no = false;
  runCommand->add_flag("--no", no, "Answer No when asked to search a file")->excludes(yes);
  runCommand->add_option("--choose", run.choose, "The file to pick when a file is asked for");

  std::vector<std::string> cryptFiles;
  CLI::App* cryptCommand =
      app.add_subcommand("crypt", "Encipher description files (.vtl) into .vtld files beside them");
  cryptCommand->add_option("FILE", cryptFiles, "Plain description files")->required();

  vantrel::cli::CheckOptions check;
  CLI::App* checkCommand = app.add_subcommand(
      "check", "Load a description (.vtl, .vtld) or user buffer file (.vtlr) and print it");
  checkCommand->add_option("FILE", check.file, "The file to load")->required();
  checkCommand->add_option("--key", check.key,
                           "The buffer's key (HeaderKey), for a user buffer file and the "
                           "value-text files");
  checkCommand->add_option("--symbols", check.symbols, "PG5 symbol file");
  checkCommand->add_option("--project-path", check.projectPath,
                           "Project directory, searched first for value-text files");
  checkCommand->add_option("--resource-path", check.resourcePath,
                           "Comma-separated directories searched for value-text files");
  checkCommand->add_flag("--json", check.json, "Print one JSON object");

  vantrel::cli::HistoryOptions history;
  CLI::App* historyCommand = app.add_subcommand(
      "history", "Show or export a time range of one buffer kept by a record history");
  historyCommand
      ->add_option("FILE", history.file,
                   "The record history: a SQLite file or a PostgreSQL URL (postgresql://...)")
      ->required();
  historyCommand->add_flag("--list", history.list,
                           "List the buffers the history holds: descriptions, rows, first and "
                           "last time");
  historyCommand->add_option("--key", history.key,
                             "The buffer's key (needed when the history holds several)");
  historyCommand->add_option("--from", history.from,
                             "First PC time of the range: YYYY-MM-DD[ hh:mm[:ss[.fff]]]");
  historyCommand->add_option("--to", history.to,
                             "Last PC time of the range, included: YYYY-MM-DD[ hh:mm[:ss[.fff]]]");
  historyCommand
      ->add_option("--format", history.format,
                   "text (the lines as `vantrel run` printed them), biff2 (Excel 2.x), xlsx or "
                   "csv")
      ->check(CLI::IsMember({"text", "biff2", "xlsx", "csv"}))
      ->capture_default_str();
  historyCommand->add_option("-o,--output", history.output,
                             "The export file (rows of a later description go to FILE_2, ...)");
  historyCommand->add_flag("--date-col", history.dateColumn, "Show the PC date column");
  historyCommand->add_flag("--time-col", history.timeColumn, "Show the PC time column");
  historyCommand->add_flag("--status-col", history.statusColumn,
                           "Show the controller status column");
#ifdef VANTREL_WITH_MODBUS
  vantrel::cli::ControllerOptions controller;
  CLI::App* controllerCommand = vantrel::cli::AddControllerCommand(app, controller);
#endif

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int status = app.exit(e);
    return status == 0 ? 0 : 2;
  }
  int status = 2;
  if (runCommand->parsed()) status = vantrel::cli::Run(run);
  if (cryptCommand->parsed()) status = vantrel::cli::Crypt(cryptFiles);
  if (checkCommand->parsed()) status = vantrel::cli::Check(check);
  if (historyCommand->parsed()) status = vantrel::cli::History(history);
#ifdef VANTREL_WITH_MODBUS
  if (controllerCommand->parsed()) status = vantrel::cli::RunController(controller);
#endif
  // What a command printed must have reached its reader: a full disk or a closed output is
  // an error, never a silent success.
  const bool flushFailed = std::fflush(stdout) != 0;
  if (flushFailed || std::ferror(stdout) != 0) {
    // `run` has said so as soon as it happened.
    if (!runCommand->parsed()) {
      std::fprintf(stderr, "vantrel: cannot write to standard output%s%s\n",
                   flushFailed ? ": " : "", flushFailed ? std::strerror(errno) : "");
    }
    if (status == 0) status = 1;
  }
  return status;
}
