#pragma once
// The colour ramp editor: one trapezium per channel with four draggable
// break points, the ramp as a bar, the white limit, and the two presets.
#include <QWidget>
#include <array>

class QLabel;
class QPushButton;
class QSlider;

namespace varnoth {

class frmMain;
class PictureBox;
struct ColourSettings;

class frmColor : public QWidget {
  Q_OBJECT
 public:
  explicit frmColor(frmMain& main);

  // Bar, panels and labels from the settings as they stand.
  void DrawAll();
  void GreyScale();  // Command1
  void Reset();      // Command3
  // Where break r of a channel stands on its panel, in the panel's pixels.
  QPointF PointAt(int channel, int r) const;
  // The break that a press at `pixel` takes hold of, or -1.
  int BreakAt(int channel, const QPointF& pixel) const;

  QPushButton *Command1 = nullptr, *Command2 = nullptr, *Command3 = nullptr;
  QSlider* Slider1 = nullptr;
  std::array<PictureBox*, 3> Picture2{};
  PictureBox* Picture1 = nullptr;
  std::array<std::array<QLabel*, 4>, 3> ChannelLabels{};  // Label0, Label1, Label2
  QLabel* Label3 = nullptr;
  std::array<QLabel*, 3> ChannelNames{};
  std::array<QWidget*, 3> LabelStrips{};  // the labels stand under their points

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void DrawPanel(int channel);
  void DrawBar();
  void DrawLabels();
  void PlaceLabels(int channel);
  void ShowChannels();
  void Press(int channel, const QPointF& at);
  void Move(int channel, const QPointF& at);
  void Release();
  void WhiteChanged(int value);

  frmMain& main_;
  ColourSettings& c_;
  int heldChannel_ = -1, heldBreak_ = -1;
};

}  // namespace varnoth
