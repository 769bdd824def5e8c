#pragma once

#include <QFont>
#include <QPainter>
#include <QTabBar>
#include <vector>

#include "app/MeterSelection.h"

namespace wattlark {

/// The tab strip `tabKillAWatt`: shows the tabs of a selection and hands the user's choice to it.
class MeterTabs : public QTabBar {
  Q_OBJECT

 public:
  /// `selection` must outlive this object.
  explicit MeterTabs(MeterSelection& selection, QWidget* parent = nullptr);

  /// Shows the tabs and the choice that the selection has now.
  void ShowTabs();

 signals:
  /// The user chose another tab, or the present one again.
  void Chosen();

 protected:
  QSize tabSizeHint(int index) const override;
  QSize minimumTabSizeHint(int index) const override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QString TabName(int index) const;
  QFont TabFont(int index) const;
  void PaintTab(QPainter& painter, int index) const;

  MeterSelection& selection_;
};

/// The ground `elaHeader` that the tabs stand on.
class TabHeader : public QWidget {
 public:
  /// `tabs` becomes a child.
  explicit TabHeader(MeterTabs* tabs, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace wattlark
