#include "console/line_editor.h"

#include <histedit.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cwchar>
#include <vector>

#include "console/completion.h"
#include "console/interrupt.h"
#include "console/output.h"

namespace vorn::console {

namespace {

constexpr char kInterrupt = '\003';
constexpr int kMostHistory = 1000;

volatile sig_atomic_t windowChanged = 0;
volatile sig_atomic_t continued = 0;

void markWindow(int) { windowChanged = 1; }
void markContinued(int) { continued = 1; }

// Without SA_RESTART, so that a waiting read comes back and looks at the marks.
void catchSignal(int signal, void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  sigaction(signal, &action, nullptr);
}

std::size_t windowColumns() {
  struct winsize size = {};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
  return size.ws_col;
}

// The candidates in columns, as wide as the terminal.
void listCandidates(const std::vector<std::string>& candidates) {
  std::size_t widest = 0;
  for (const std::string& candidate : candidates) widest = std::max(widest, candidate.size());
  const std::size_t width = widest + 2;
  const std::size_t perLine = std::max<std::size_t>(windowColumns() / width, 1);
  std::fputc('\n', stdout);
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    const bool last = (i + 1) % perLine == 0 || i + 1 == candidates.size();
    std::printf("%s%s", candidates[i].c_str(), last ? "\n" : std::string(width - candidates[i].size(), ' ').c_str());
  }
  std::fflush(stdout);
}

}  // namespace

struct LineEditor::State {
  const Session& session;
  bool coloured;
  std::string historyFile;
  EditLine* editor = nullptr;
  History* history = nullptr;
  std::string prompt;
  bool cancelled = false;

  State(const Session& itsSession, bool itsColours, std::string itsFile)
      : session(itsSession), coloured(itsColours), historyFile(std::move(itsFile)) {}

  static State& of(EditLine* editor) {
    void* state = nullptr;
    el_get(editor, EL_CLIENTDATA, &state);
    return *static_cast<State*>(state);
  }

  static char* promptOf(EditLine* editor) { return of(editor).prompt.data(); }

  // Reads one character. Signals come through here: a changed window is taken up at once, Ctrl-C becomes a character
  // that is bound to dropping the line.
  static int readCharacter(EditLine* editor, wchar_t* character) {
    std::mbstate_t decoder = {};
    while (true) {
      char byte = 0;
      const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
      if (count == 0) return 0;
      if (count < 0) {
        if (errno != EINTR) return -1;
        takeUpSignals(editor);
        if (!interrupted()) continue;
        byte = kInterrupt;
        clearInterrupt();
        decoder = {};
      }
      const std::size_t result = std::mbrtowc(character, &byte, 1, &decoder);
      if (result == static_cast<std::size_t>(-2)) continue;
      constexpr wchar_t kReplacement = 0xFFFD;
      if (result == static_cast<std::size_t>(-1)) *character = kReplacement;
      return 1;
    }
  }

  static void takeUpSignals(EditLine* editor) {
    if (windowChanged != 0) {
      windowChanged = 0;
      el_resize(editor);
    }
    if (continued != 0) {
      continued = 0;
      el_set(editor, EL_PREP_TERM, 1);
      el_set(editor, EL_REFRESH);
    }
  }

  static unsigned char cancel(EditLine* editor, int) {
    of(editor).cancelled = true;
    std::fputs("^C\n", stdout);
    return CC_NEWLINE;
  }

  static unsigned char completeWord(EditLine* editor, int) {
    const LineInfo* line = el_line(editor);
    const std::string_view before(line->buffer, static_cast<std::size_t>(line->cursor - line->buffer));
    const Completion completion = complete(of(editor).session, before);
    if (completion.candidates.empty()) return CC_ERROR;
    const std::size_t typed = before.size() - completion.start;
    std::string added = commonBeginning(completion.candidates).substr(typed);
    const bool only = completion.candidates.size() == 1;
    if (only) added += completion.suffix;
    if (added.empty()) {
      if (only) return CC_NORM;
      listCandidates(completion.candidates);
      return CC_REDISPLAY;
    }
    return el_insertstr(editor, added.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
  }

  void saveHistory() const {
    HistEvent event;
    if (!historyFile.empty()) ::history(history, &event, H_SAVE, historyFile.c_str());
  }
};

LineEditor::LineEditor(const Session& session, bool coloured, std::string historyFile)
    : state_(std::make_unique<State>(session, coloured, std::move(historyFile))) {
  State& state = *state_;
  state.history = history_init();
  HistEvent event;
  history(state.history, &event, H_SETSIZE, kMostHistory);
  history(state.history, &event, H_SETUNIQUE, 1);
  if (!state.historyFile.empty()) history(state.history, &event, H_LOAD, state.historyFile.c_str());

  state.editor = el_init("vorn-console", stdin, stdout, stderr);
  EditLine* editor = state.editor;
  el_set(editor, EL_CLIENTDATA, &state);
  el_set(editor, EL_EDITOR, "emacs");
  el_set(editor, EL_PROMPT_ESC, &State::promptOf, '\001');
  el_set(editor, EL_HIST, &::history, state.history);
  el_set(editor, EL_GETCFN, &State::readCharacter);
  el_set(editor, EL_ADDFN, "vorn-complete", "Complete the word", &State::completeWord);
  el_set(editor, EL_ADDFN, "vorn-cancel", "Drop the line", &State::cancel);
  el_source(editor, nullptr);
  el_set(editor, EL_BIND, "^I", "vorn-complete", nullptr);
  el_set(editor, EL_BIND, "^C", "vorn-cancel", nullptr);
  el_set(editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
  catchSignal(SIGWINCH, markWindow);
  catchSignal(SIGCONT, markContinued);
}

LineEditor::~LineEditor() {
  state_->saveHistory();
  el_end(state_->editor);
  history_end(state_->history);
}

LineRead LineEditor::read(std::string_view prompt, std::string& line) {
  State& state = *state_;
  state.prompt = prompt;
  if (state.coloured) {
    // What stands between the marks takes no columns. The library drops such a part at the very end, so that the prompt's
    // blank comes last.
    const std::string_view words = prompt.substr(0, prompt.find_last_not_of(' ') + 1);
    state.prompt = "\001\033[1;34m\001" + std::string(words) + "\001" + std::string(kStyleEnd) + "\001";
    state.prompt += prompt.substr(words.size());
  }
  state.cancelled = false;
  int count = 0;
  const char* text = el_gets(state.editor, &count);
  if (state.cancelled) return LineRead::Cancelled;
  if (text == nullptr || count <= 0) {
    std::fputc('\n', stdout);
    return LineRead::End;
  }
  line.assign(text, static_cast<std::size_t>(count));
  while (line.ends_with('\n') || line.ends_with('\r')) line.pop_back();
  if (line.find_first_not_of(" \t") != std::string::npos) {
    HistEvent event;
    history(state.history, &event, H_ENTER, line.c_str());
    state.saveHistory();
  }
  return LineRead::Line;
}

std::size_t LineEditor::columns() const { return windowColumns(); }

}  // namespace vorn::console
