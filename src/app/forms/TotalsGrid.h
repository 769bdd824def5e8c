#pragma once

#include <QTableWidget>

#include "app/TotalsGridView.h"

namespace wattlark {

/// The grid `flxTotals`: a header row and one row for each period. A peak's time stands below its
/// value, so that the values stay in line.
class TotalsGrid : public QTableWidget {
  Q_OBJECT

 public:
  explicit TotalsGrid(QWidget* parent);

  void SetView(const TotalsGridView& view);

  QSize sizeHint() const override { return minimumSizeHint(); }
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void Arrange();
  void SetCell(int row, int column, const QString& text);

  class Cells;
  bool isStacked_ = false;  ///< values have a second line
};

}  // namespace wattlark
