// A window of the same toolkit with an empty chart: what the program's own window is compared with.
#include <qcustomplot.h>

#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QMainWindow window;
  window.setWindowTitle("Empty");
  window.setCentralWidget(new QCustomPlot);
  window.resize(360, 520);
  window.show();
  return QApplication::exec();
}
