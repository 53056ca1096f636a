// Lines from a terminal: editing, history, completion. The one room that knows the line-editing library.
#pragma once

#include <memory>
#include <string>

#include "console/line_source.h"
#include "console/session.h"

namespace vorn::console {

class LineEditor : public LineSource {
 public:
  // Edits on standard input and output. History is kept in the file, or nowhere when its name is empty.
  LineEditor(const Session& session, bool coloured, std::string historyFile);
  ~LineEditor() override;

  LineRead read(std::string_view prompt, std::string& line) override;
  [[nodiscard]] std::size_t columns() const override;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vorn::console
