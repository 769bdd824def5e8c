#include "app/ConsoleView.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "app/StatusViews.h"
#include "support/DisplayText.h"
#include "support/modFormat.h"

namespace wattlark {

namespace {

enum Column { Name, Volts, Amps, Watts, Energy, Cost, State, ColumnCount };

constexpr std::array<const char*, ColumnCount> kHeadings = {"Meter", "Volts",      "Amps", "Watts",
                                                            "Today", "Cost today", "State"};
// Wide enough for usual values, so that columns do not jump about from second to second.
constexpr std::array<std::size_t, ColumnCount> kLeastWidths = {8, 5, 5, 8, 10, 10, 9};
// What a narrow terminal does without, the first one first.
constexpr std::array kDispensable = {Cost, Amps, Volts, Energy, State};
constexpr std::size_t kGap = 2;

using Row = std::array<std::string, ColumnCount>;

Row MeterRow(const clsKillAWatt& meter, bool isReceiving, double pricePerKWh,
             const RegionalSettings& regional) {
  const auto live = [&](double value, int decimals) {
    return FormatNumberAuto(regional, isReceiving ? value : NoValue, decimals, "---");
  };
  const double usage = meter.Statistics().Usage(Today);
  const double cost = HasValue(usage) ? usage * pricePerKWh / 1000 : NoValue;
  const char* state = !isReceiving                     ? "silent"
                      : meter.Alarm().AlarmTriggered() ? "alarm"
                                                       : "receiving";
  return {PrintableText(meter.Name()),
          live(meter.ShownVolts(), 1),
          live(meter.ShownAmps(), 2),
          live(meter.ShownWatts(), 1),
          FormatEnergy(regional, usage),
          FormatCurrencyAuto(regional, cost, AutomaticDecimals, "---"),
          state};
}

struct Layout {
  std::array<std::size_t, ColumnCount> widths = kLeastWidths;
  std::array<bool, ColumnCount> isShown;

  std::size_t Total() const {
    std::size_t total = 0;
    for (std::size_t c = 0; c < ColumnCount; ++c) {
      if (isShown[c]) total += widths[c] + (c == Name ? 0 : kGap);
    }
    return total;
  }
};

Layout FitLayout(const std::vector<Row>& rows, std::size_t columns) {
  Layout layout;
  layout.isShown.fill(true);
  for (const Row& row : rows) {
    for (std::size_t c = 0; c < ColumnCount; ++c) {
      layout.widths[c] = std::max(layout.widths[c], DisplayWidth(row[c]));
    }
  }
  const std::size_t nameWidth = layout.widths[Name];
  layout.widths[Name] = kLeastWidths[Name];
  for (const Column column : kDispensable) {
    if (layout.Total() <= columns) break;
    layout.isShown[column] = false;
  }
  const std::size_t used = layout.Total();
  const std::size_t spare = columns > used ? columns - used : 0;
  layout.widths[Name] = std::min(nameWidth, kLeastWidths[Name] + spare);
  return layout;
}

std::string RowLine(const Row& row, const Layout& layout, std::size_t columns) {
  std::string line;
  for (std::size_t c = 0; c < ColumnCount; ++c) {
    if (!layout.isShown[c]) continue;
    const std::string cell = CutToWidth(row[c], layout.widths[c]);
    const std::string padding(layout.widths[c] - DisplayWidth(cell), ' ');
    if (c != Name) line.append(kGap, ' ');
    line += c == Name || c == State ? cell + padding : padding + cell;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return CutToWidth(line, columns);
}

Row HeadingRow() {
  Row row;
  std::copy(kHeadings.begin(), kHeadings.end(), row.begin());
  return row;
}

// The headings, the meters, and behind two or more of them the Total.
std::vector<Row> TableRows(const ProfileData& profile, const RegionalSettings& regional,
                           DateTime now) {
  const double price = profile.Settings().Mils;
  std::vector<Row> rows{HeadingRow()};
  bool isAnyReceiving = false;
  for (const auto& meter : profile.Meters()) {
    const bool isReceiving = meter->IsReceiving(now);
    isAnyReceiving = isAnyReceiving || isReceiving;
    rows.push_back(MeterRow(*meter, isReceiving, price, regional));
  }
  // The Total is brought up to date every second, whether there is anything to add up or not.
  if (profile.Meters().Count() > 1) {
    rows.push_back(MeterRow(profile.Total(), isAnyReceiving, price, regional));
  }
  return rows;
}

}  // namespace

std::string ConsoleTable(const ProfileData& profile, const RegionalSettings& regional,
                         bool isFlowing, DateTime now, ConsoleSize size) {
  const auto columns = static_cast<std::size_t>(std::max(size.columns - 1, 1));
  const auto mostLines = static_cast<std::size_t>(std::max(size.rows - 1, 1));
  std::vector<std::string> lines;
  const std::string message = MainAreaMessage(profile, isFlowing);
  if (!message.empty()) {
    lines.push_back(CutToWidth(message.substr(0, message.find('\r')), columns));
  }
  if (!profile.Meters().IsEmpty()) {
    const std::vector<Row> rows = TableRows(profile, regional, now);
    const Layout layout = FitLayout(rows, columns);
    const std::size_t total = profile.Meters().Count() > 1 ? 1 : 0;
    const std::size_t meters = profile.Meters().Count();
    const std::size_t freeLines = mostLines - std::min(mostLines, lines.size() + 1 + total);
    const std::size_t shown =
        meters <= freeLines ? meters : freeLines - std::min<std::size_t>(freeLines, 1);
    for (std::size_t r = 0; r <= shown; ++r) lines.push_back(RowLine(rows[r], layout, columns));
    if (shown < meters) {
      lines.push_back(CutToWidth("(and " + std::to_string(meters - shown) + " more)", columns));
    }
    if (total > 0) lines.push_back(RowLine(rows.back(), layout, columns));
  }
  lines.resize(std::min(lines.size(), mostLines));
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

std::string ConsoleDate(DateTime now) {
  const std::int64_t milliseconds = now.Milliseconds();
  return now.PlusMilliseconds(-(((milliseconds % 1000) + 1000) % 1000)).ToIso();
}

std::string ConsoleLine(const clsKillAWatt& meter, DateTime now) {
  static const RegionalSettings kPlain = RegionalSettings::UnitedStates();
  const auto number = [](double value, int decimals) {
    return FormatNumberAuto(kPlain, value, decimals, "---", false);
  };
  const std::string start = PrintableText(meter.Name()) + " ";
  if (!meter.IsReceiving(now)) return start + "no data";
  const double usage = meter.Statistics().Usage(Today);
  return start + number(meter.ShownWatts(), 1) + " W " + number(meter.ShownVolts(), 1) + " V " +
         number(meter.ShownAmps(), 2) + " A today " +
         number(HasValue(usage) ? usage / 1000 : NoValue, 3) + " kWh";
}

}  // namespace wattlark
