#include "host/terminal/page_layout.h"

#include "host/base/display_text.h"
#include "host/base/text.h"

#include <algorithm>
#include <cmath>

namespace tavenhall {

namespace {

constexpr int kMargin = 2;
constexpr int kTop = 3;            // the page's name, a rule, a blank line
constexpr int kBottom = 3;         // a rule, the buttons, the keys
constexpr int kProgressRows = 6;   // a blank line, the phase, the bar, the status, two lines of numbers
constexpr int kWidestText = 100;   // longer lines are hard to read
constexpr int kButtonColumns = 6;  // of a button beside its label, with the gap to the next

// The smallest width of the steps: the longest word fits on one line, unless too little remains for the text.
int leastSideColumns(int columns, const std::vector<Step>& steps) {
  int widest = 0;
  for (const Step& step : steps) {
    widest = std::max(widest, widestWord(step.title));
  }
  return std::clamp(widest + 2, 17, std::min(columns / 3, 30));
}

// The page's rectangles.
struct Frame {
  Size size;
  int sideColumns;
  int textColumn;
  int textColumns;
  int bodyRows;

  Frame(Size its, const std::vector<Step>& steps)
      : size(its),
        sideColumns(std::clamp(its.columns / 4, leastSideColumns(its.columns, steps), 30)),
        textColumn(kMargin + sideColumns + 2),
        textColumns(std::min(its.columns - textColumn - kMargin - 2, kWidestText)),
        bodyRows(its.rows - kTop - kBottom) {}

  [[nodiscard]] int bottomRow() const { return size.rows - kBottom; }
};

void putSteps(LayerWriter& page, const Frame& frame, const std::vector<Step>& steps) {
  const Signs& signs = page.signs();
  int row = kTop;
  for (const Step& step : steps) {
    const char* sign = signs.ahead;
    Style style = Style::dim;
    switch (step.state) {
      case StepState::ahead: break;
      case StepState::current:
        sign = signs.current;
        style = Style::current;
        break;
      case StepState::done: sign = signs.done; break;
      case StepState::failed:
        sign = signs.failed;
        style = Style::bad;
        break;
    }
    std::vector<std::string> lines = wrapText(step.title, frame.sideColumns - 2);
    constexpr std::size_t kMostLines = 4;
    if (lines.size() > kMostLines) {
      lines.resize(kMostLines);
    }
    page.put(row, kMargin, sign, style);
    for (const std::string& line : lines) {
      page.put(row++, kMargin + 2, line, style);
    }
  }
}

void putBar(LayerWriter& page, const Frame& frame, int row, const ProgressMeter& meter) {
  constexpr int kPercentColumns = 7;
  const int columns = frame.textColumns - kPercentColumns;
  const int done = std::clamp(static_cast<int>(std::floor(meter.part() * columns)), 0, columns);
  std::string full;
  std::string empty;
  for (int i = 0; i < columns; ++i) {
    (i < done ? full : empty) += i < done ? page.signs().barDone : page.signs().barAhead;
  }
  page.put(row, frame.textColumn, full, Style::barDone);
  page.put(row, frame.textColumn + done, empty, Style::barAhead);
  if (const auto percent = meter.percent()) {
    const std::string text = std::to_string(*percent) + " %";
    page.put(row, frame.textColumn + frame.textColumns - displayWidth(text), text, Style::strong);
  }
}

// The first of a text's forms that fits into the room; empty if none does.
std::string firstThatFits(const std::vector<std::string>& forms, int room) {
  const auto found = std::find_if(forms.begin(), forms.end(),
                                  [room](const std::string& form) { return displayWidth(form) <= room; });
  return found != forms.end() ? *found : std::string();
}

// A text at each end of a row; for the left one, the first of its forms that leaves enough room.
void putBothEnds(LayerWriter& page, const Frame& frame, int row, const std::vector<std::string>& leftForms,
                 const std::string& right) {
  const int room = frame.textColumns - (right.empty() ? 0 : displayWidth(right) + 1);
  page.put(row, frame.textColumn, firstThatFits(leftForms, room), Style::dim);
  page.put(row, frame.textColumn + frame.textColumns - displayWidth(right), right, Style::dim);
}

void putProgress(LayerWriter& page, const Frame& frame, PageModel& model, PageModel::Time now) {
  ProgressMeter& meter = model.meter();
  const int row = frame.bottomRow() - kProgressRows + 1;
  page.put(row, frame.textColumn, firstThatFits(model.phaseTexts(now), frame.textColumns), Style::strong);
  putBar(page, frame, row + 1, meter);
  const Span status = model.statusLine();
  page.put(row + 2, frame.textColumn, truncateEnd(status.text, frame.textColumns), status.style);

  std::vector<std::string> copied;
  if (meter.copied().value_or(0.0) > 0.0) {
    const std::string amount = amountText(meter);
    copied = {format(_("{0} copied"), {amount}), amount};
  }
  const auto rate = meter.rate(now);
  putBothEnds(page, frame, row + 3, copied, rate ? sizeText(*rate) + "/s" : "");

  if (model.isWaitingForUser()) {
    return;  // the clock would have to be drawn every second
  }
  const std::string passed = durationText(std::floor(meter.passed(now).count()));
  const auto minutes = meter.minutesLeft(now);
  putBothEnds(page, frame, row + 4, {format(_("{0} passed"), {passed}), passed},
              minutes ? timeLeftText(*minutes) : "");
}

// The keys that have an effect now: as many as fit, counted from the last.
std::string keysText(const Layer& front, const PageModel& model, int columns, const Signs& signs) {
  const bool isLastPage = model.stage() == PageModel::Stage::summary;
  std::vector<std::string> keys{model.takesTyping() ? _("Ctrl-C leave")
                                : isLastPage        ? _("q close")
                                                    : _("q leave")};
  if (!model.takesTyping()) {
    keys.emplace_back(_("? help"));
  }
  if (front.extent.maximum > 0) {
    keys.push_back(format(_("{0} scroll"), {signs.arrows}));
  }
  if (!front.buttons.empty()) {
    keys.emplace_back(_("Enter press"));
  }
  if (front.buttons.size() > 1) {
    keys.emplace_back(_("Tab choose"));
  }
  std::string text = keys[0];
  for (std::size_t i = 1; i < keys.size(); ++i) {
    if (std::string more = keys[i] + "   " + text; displayWidth(more) <= columns) {
      text = std::move(more);
    }
  }
  return text;
}

// The width of a row of these buttons.
int columnsOfButtons(const std::vector<PageButton>& buttons) {
  int columns = -2;
  for (const PageButton& button : buttons) {
    columns += displayWidth(button.label) + kButtonColumns;
  }
  return columns;
}

Layer layOutPage(PageModel& model, PageModel::Time now, Size size, const Signs& signs) {
  const std::vector<Step> steps = model.steps();
  const Frame frame(size, steps);
  LayerWriter page({0, 0, size.rows, size.columns}, signs);
  const int ruleColumns = size.columns - 2 * kMargin;

  page.put(0, kMargin, truncateEnd(format(_("Install {0}"), {model.introduction().productName}), ruleColumns),
           Style::strong);
  page.putRule(1, kMargin, ruleColumns);
  putSteps(page, frame, steps);

  const Span heading = model.heading();
  const std::vector<Line> headingLines = wrappedLines(heading.text, frame.textColumns, heading.style);
  const int headingRows = std::min(static_cast<int>(headingLines.size()), 3);
  for (int i = 0; i < headingRows; ++i) {
    page.putLine(kTop + i, frame.textColumn, headingLines[static_cast<std::size_t>(i)]);
  }
  const int textRow = kTop + headingRows + 1;
  const bool hasProgress = model.stage() == PageModel::Stage::page;
  const int textRows = frame.bodyRows - headingRows - 1 - (hasProgress ? kProgressRows : 1);
  page.putScrolled(scrolled(model.textLines(frame.textColumns), model.textScroll(), textRows), textRow,
                   frame.textColumn, textRows, frame.textColumn + frame.textColumns + 1);
  if (hasProgress) {
    putProgress(page, frame, model, now);
  }

  const int bottom = frame.bottomRow();
  page.putRule(bottom, kMargin, ruleColumns);
  const std::vector<PageButton> buttons = model.buttons();
  page.putButtons(buttons, model.focus(), bottom + 1, size.columns - kMargin);
  if (const std::string notice = model.notice(); !notice.empty() && hasProgress) {
    const int room = ruleColumns - columnsOfButtons(buttons) - 3;
    page.put(bottom + 1, kMargin, truncateEnd(notice, room), Style::warning);
  }
  return page.take();
}

// The buttons, with labels shortened so that all fit in one row.
std::vector<PageButton> fittingButtons(std::vector<PageButton> buttons, int columns) {
  const int share = buttons.empty() ? 0 : (columns + 2) / static_cast<int>(buttons.size()) - kButtonColumns;
  const int needed = columnsOfButtons(buttons);
  for (PageButton& button : buttons) {
    button.label = needed > columns ? truncateEnd(button.label, std::max(share, 1)) : button.label;
  }
  return buttons;
}

Layer layOutTooSmall(const PageModel& model, Size size, const Signs& signs) {
  LayerWriter page({0, 0, size.rows, size.columns}, signs);
  const char* why = model.isWaitingForUser() ? _("A prompt is waiting. Make this window larger (60x20).")
                                             : _("Make this window larger (60x20).");
  page.put(0, 0, truncateEnd(why, size.columns), Style::text);
  return page.take();
}

// The width of a window's text: no wider than its content, so that the page behind it stays visible.
int windowTextColumns(const PageWindow& window, int most) {
  constexpr int kLeast = 40;
  int columns = displayWidth(window.heading);
  for (const Span& paragraph : window.paragraphs) {
    for (const std::string& line : wrapText(paragraph.text, most)) {
      columns = std::max(columns, displayWidth(line));
    }
  }
  return std::clamp(std::max(columns, columnsOfButtons(window.buttons)), std::min(kLeast, most), most);
}

// Between the page's top and `bottom`, or, if it is too high for that, in the middle of the screen.
Layer layOutWindow(const PageWindow& window, Size size, int bottom, int depth, const Signs& signs) {
  constexpr int kFrameColumns = 6;  // the frame, and two cells of room beside it
  constexpr int kFixedRows = 6;     // the frame, the buttons, and three blank lines
  constexpr int kWidest = 60;
  const int textColumns = windowTextColumns(window, std::min(size.columns - 8 - kFrameColumns, kWidest));
  const int columns = textColumns + kFrameColumns;

  std::vector<Line> lines;
  for (const Span& paragraph : window.paragraphs) {
    append(lines, wrappedLines(paragraph.text, textColumns, paragraph.style));
  }
  const std::vector<Line> heading = wrappedLines(window.heading, textColumns, window.headingStyle);
  const int headingRows = std::min(static_cast<int>(heading.size()), 3);
  const int most = size.rows - 2 - kFixedRows - headingRows;
  const int textRows = std::clamp(static_cast<int>(lines.size()), 1, std::max(most, 1));
  const int rows = textRows + headingRows + kFixedRows;

  // Moves a window above another a little, so that both are visible.
  const int end = rows <= bottom ? bottom : size.rows;
  const int row = std::clamp((end - rows) / 2 + depth, 0, std::max(end - rows, 0));
  const int column = std::clamp((size.columns - columns) / 2 + 2 * depth, 0, size.columns - columns);
  LayerWriter writer({row, column, rows, columns}, signs);
  writer.putFrame();
  for (int i = 0; i < headingRows; ++i) {
    writer.putLine(2 + i, 3, heading[static_cast<std::size_t>(i)]);
  }
  writer.putScrolled(scrolled(std::move(lines), window.scroll, textRows), 3 + headingRows, 3, textRows,
                     columns - 2);
  writer.putButtons(fittingButtons(window.buttons, textColumns), window.focus, rows - 2, columns - 3);
  return writer.take();
}

// A number of which a window hides some digits would be read as another one.
void removeCutNumbers(Layer& page, int firstRow, const Rect& window) {
  std::erase_if(page.runs, [&](const Run& run) {
    const int end = run.column + displayWidth(run.text);
    const bool isReached = run.row >= std::max(firstRow, window.row) && run.row < window.row + window.rows &&
                           run.column < window.column + window.columns && end > window.column;
    const bool isHidden = run.column >= window.column && end <= window.column + window.columns;
    return isReached && !isHidden && run.text.find_first_of("0123456789") != std::string::npos;
  });
}

}  // namespace

std::vector<Layer> layOut(PageModel& model, PageModel::Time now, Size size, const Signs& signs) {
  if (size.rows < kSmallestPage.rows || size.columns < kSmallestPage.columns) {
    return {layOutTooSmall(model, size, signs)};
  }
  std::vector<Layer> layers{layOutPage(model, now, size, signs)};
  const bool hasProgress = model.stage() == PageModel::Stage::page;
  const int bottom = size.rows - kBottom - (hasProgress ? kProgressRows - 1 : 0);
  int depth = 0;
  for (const PageWindow& window : model.windows()) {
    layers.push_back(layOutWindow(window, size, bottom, depth++, signs));
    removeCutNumbers(layers.front(), bottom, layers.back().place);
  }
  layers.front().runs.push_back(
      {size.rows - 1, kMargin, keysText(layers.back(), model, size.columns - 2 * kMargin, signs), Style::dim});
  return layers;
}

std::optional<std::size_t> buttonAt(const std::vector<Layer>& layers, int row, int column) {
  if (layers.empty()) {
    return std::nullopt;
  }
  for (const PlacedButton& button : layers.back().buttons) {
    if (button.place.contains(row, column)) {
      return button.index;
    }
  }
  return std::nullopt;
}

}  // namespace tavenhall
