#include "platform/qt/SystemRegional.h"

#include <QLocale>
#include <QRegularExpression>
#include <QString>
#include <algorithm>
#include <vector>

namespace wattlark {

namespace {

enum class PieceKind { Literal, Date, Hour, Minute, Second, HalfDay, Zone, Fraction };

// One run of a letter, or the text between two of them, of the toolkit's date and time patterns.
struct Piece {
  PieceKind kind = PieceKind::Literal;
  QString text;
};

PieceKind KindOfLetter(QChar letter) {
  switch (letter.unicode()) {
    case 'y':
    case 'M':
    case 'd':
      return PieceKind::Date;
    case 'h':
    case 'H':
      return PieceKind::Hour;
    case 'm':
      return PieceKind::Minute;
    case 's':
      return PieceKind::Second;
    case 'z':
      return PieceKind::Fraction;
    case 'A':
    case 'a':
    case 'B':  // "in the morning": the toolkit hands it on as it stands in the language's data
      return PieceKind::HalfDay;
    case 't':
      return PieceKind::Zone;
    default:
      return PieceKind::Literal;
  }
}

void AddLiteral(std::vector<Piece>& pieces, const QString& text) {
  if (pieces.empty() || pieces.back().kind != PieceKind::Literal) pieces.push_back({});
  pieces.back().text += text;
}

// Takes the quoted text that begins at `position`, which then stands behind it.
QString TakeQuoted(const QString& pattern, qsizetype& position) {
  if (pattern.mid(position, 2) == QLatin1String("''")) {
    position += 2;
    return QStringLiteral("'");
  }
  QString text;
  for (++position; position < pattern.size(); ++position) {
    if (pattern[position] != QLatin1Char('\'')) {
      text += pattern[position];
    } else if (pattern.mid(position, 2) == QLatin1String("''")) {
      text += pattern[position++];
    } else {
      ++position;
      break;
    }
  }
  return text;
}

std::vector<Piece> SplitPattern(const QString& pattern) {
  std::vector<Piece> pieces;
  qsizetype position = 0;
  while (position < pattern.size()) {
    const QChar letter = pattern[position];
    if (letter == QLatin1Char('\'')) {
      AddLiteral(pieces, TakeQuoted(pattern, position));
      continue;
    }
    qsizetype end = position + 1;
    const PieceKind kind = KindOfLetter(letter);
    if (kind == PieceKind::HalfDay) {
      if (end < pattern.size() && pattern[end].toUpper() == QLatin1Char('P')) ++end;
    } else if (kind != PieceKind::Literal) {
      while (end < pattern.size() && pattern[end] == letter) ++end;
    }
    const QString text = pattern.mid(position, end - position);
    if (kind == PieceKind::Literal) {
      AddLiteral(pieces, text);
    } else {
      pieces.push_back({kind, text});
    }
    position = end;
  }
  return pieces;
}

bool Has(const std::vector<Piece>& pieces, PieceKind kind) {
  return std::any_of(pieces.begin(), pieces.end(),
                     [kind](const Piece& piece) { return piece.kind == kind; });
}

// Takes out the zone and fractions of a second with the brackets and blanks that set them off.
std::vector<Piece> WithoutZone(const std::vector<Piece>& pieces) {
  static const QRegularExpression emptyBrackets(QStringLiteral("\\s*[(\\[]\\s*[)\\]]\\s*"));
  std::vector<Piece> kept;
  for (const Piece& piece : pieces) {
    if (piece.kind == PieceKind::Zone || piece.kind == PieceKind::Fraction) continue;
    if (piece.kind == PieceKind::Literal) {
      AddLiteral(kept, piece.text);
      kept.back().text.remove(emptyBrackets);
    } else {
      kept.push_back(piece);
    }
  }
  static const QRegularExpression blanksBefore(QStringLiteral("^[\\s,]+"));
  static const QRegularExpression blanksBehind(QStringLiteral("[\\s,]+$"));
  if (!kept.empty() && kept.front().kind == PieceKind::Literal) {
    kept.front().text.remove(blanksBefore);
  }
  if (!kept.empty() && kept.back().kind == PieceKind::Literal) {
    kept.back().text.remove(blanksBehind);
  }
  return kept;
}

void AppendLiteral(QString& pattern, QString text) {
  static const QRegularExpression letters(QStringLiteral("[A-Za-z']"));
  if (text.contains(letters)) {
    text = QLatin1Char('\'') + text.replace(QLatin1String("'"), QLatin1String("''")) +
           QLatin1Char('\'');
  }
  pattern += text;
}

std::string ShortDate(const QLocale& locale) {
  QString pattern;
  for (const Piece& piece : SplitPattern(locale.dateFormat(QLocale::ShortFormat))) {
    if (piece.kind == PieceKind::Literal) {
      AppendLiteral(pattern, piece.text);
    } else if (piece.kind == PieceKind::Date) {
      pattern += piece.text.startsWith(QLatin1Char('y')) ? QStringLiteral("yyyy") : piece.text;
    }
  }
  for (const char field : {'y', 'M', 'd'}) {
    if (!pattern.contains(QLatin1Char(field))) return "yyyy-MM-dd";
  }
  return pattern.toStdString();
}

QString LongTime(const QLocale& locale, bool hasHalfDays) {
  std::vector<Piece> pieces = SplitPattern(locale.timeFormat(QLocale::LongFormat));
  if (!Has(pieces, PieceKind::Second)) {
    pieces = SplitPattern(locale.timeFormat(QLocale::ShortFormat));
    const auto minute = std::find_if(pieces.begin(), pieces.end(), [](const Piece& piece) {
      return piece.kind == PieceKind::Minute;
    });
    if (minute != pieces.end()) {
      pieces.insert(minute + 1, {{PieceKind::Literal, QStringLiteral(":")},
                                 {PieceKind::Second, QStringLiteral("ss")}});
    }
  }
  if (!hasHalfDays) std::erase_if(pieces, [](auto& p) { return p.kind == PieceKind::HalfDay; });
  pieces = WithoutZone(pieces);
  if (!Has(pieces, PieceKind::Hour) || !Has(pieces, PieceKind::Minute) ||
      !Has(pieces, PieceKind::Second)) {
    return QStringLiteral("HH:mm:ss");
  }
  const bool isHalfDayHour = Has(pieces, PieceKind::HalfDay);
  QString pattern;
  for (const Piece& piece : pieces) {
    switch (piece.kind) {
      case PieceKind::Literal:
        AppendLiteral(pattern, piece.text);
        break;
      case PieceKind::Hour:
        // A small letter counts to twelve only beside AM or PM, a capital one never does.
        pattern += isHalfDayHour ? piece.text : piece.text.toUpper();
        break;
      case PieceKind::Minute:
        pattern += QStringLiteral("mm");
        break;
      case PieceKind::Second:
        pattern += QStringLiteral("ss");
        break;
      case PieceKind::HalfDay:
        pattern += QStringLiteral("AP");
        break;
      default:
        break;
    }
  }
  return pattern;
}

// "1" in the locale's own digits, with decimals or without, wherever it stands in a sum of money.
QRegularExpression NumberOne(const QLocale& locale) {
  return QRegularExpression(locale.toString(1) + QStringLiteral("(?:[^\\s¤]?(") +
                            locale.zeroDigit() + QStringLiteral("+))?"));
}

std::string CurrencyPattern(const QLocale& locale, double value, const std::string& fallback) {
  QString sample = locale.toCurrencyString(value, QStringLiteral("¤"), 0);
  sample.replace(NumberOne(locale), QStringLiteral("#"));
  sample.replace(locale.negativeSign(), QStringLiteral("-"));
  const bool isUsable =
      sample.count(QLatin1Char('#')) == 1 && sample.count(QStringLiteral("¤")) == 1;
  return isUsable ? sample.toStdString() : fallback;
}

int CurrencyDecimals(const QLocale& locale) {
  const QString sample = locale.toCurrencyString(1.0, QStringLiteral("¤"));
  const QRegularExpressionMatch match = NumberOne(locale).match(sample);
  return match.hasMatch() ? static_cast<int>(match.capturedLength(1)) : 2;
}

}  // namespace

RegionalSettings RegionalFromLocale(const QLocale& locale) {
  RegionalSettings regional = RegionalSettings::UnitedStates();
  if (locale.language() == QLocale::C) return regional;
  regional.decimalSeparator = locale.decimalPoint().toStdString();
  regional.groupSeparator = locale.groupSeparator().toStdString();
  regional.negativeSign = locale.negativeSign().toStdString();
  QString symbol = locale.currencySymbol();
  if (symbol.isEmpty()) symbol = locale.currencySymbol(QLocale::CurrencyIsoCode);
  if (!symbol.isEmpty()) regional.currencySymbol = symbol.toStdString();
  regional.currencyDecimals = CurrencyDecimals(locale);
  regional.currencyPositive = CurrencyPattern(locale, 1.0, regional.currencyPositive);
  regional.currencyNegative = CurrencyPattern(locale, -1.0, regional.currencyNegative);
  regional.percentPattern = "#" + locale.percent().toStdString();
  const QString am = locale.amText();
  const QString pm = locale.pmText();
  const bool hasHalfDays = !am.isEmpty() && !pm.isEmpty() && am.toLower() != pm.toLower();
  if (hasHalfDays) {
    regional.amText = am.toStdString();
    regional.pmText = pm.toStdString();
  }
  regional.shortDate = ShortDate(locale);
  regional.longTime = LongTime(locale, hasHalfDays).toStdString();
  for (int day = 0; day < 7; ++day) {
    const auto index = static_cast<std::size_t>(day);
    const int toolkitDay = day == 0 ? 7 : day;
    regional.dayNames[index] = locale.dayName(toolkitDay).toStdString();
    regional.shortDayNames[index] = locale.dayName(toolkitDay, QLocale::ShortFormat).toStdString();
  }
  for (int month = 1; month <= 12; ++month) {
    const auto index = static_cast<std::size_t>(month - 1);
    regional.monthNames[index] = locale.monthName(month).toStdString();
    regional.shortMonthNames[index] = locale.monthName(month, QLocale::ShortFormat).toStdString();
  }
  return regional;
}

RegionalSettings SystemRegionalSettings() {
  return RegionalFromLocale(QLocale::system());
}

}  // namespace wattlark
