#pragma once
// The about window: the product's name and version, and one button.
#include <QWidget>

class QLabel;
class QPushButton;

namespace varnoth {

inline constexpr const char* kProductName = "Varnoth";
inline constexpr const char* kProductVersion = "2.3";

class frmAbout1 : public QWidget {
  Q_OBJECT
 public:
  explicit frmAbout1(QWidget* owner);
  QLabel* Label1 = nullptr;
  QLabel* Label2 = nullptr;
  QPushButton* Command1 = nullptr;
};

}  // namespace varnoth
