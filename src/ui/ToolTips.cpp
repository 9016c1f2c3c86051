#include "ui/ToolTips.h"

#include <QWidget>
#include <map>
#include <utility>
#include <vector>

namespace varnoth {

namespace {

using Table = std::vector<std::pair<const char*, const char*>>;

const Table& MainTips() {
  static const Table t = {
      {"Command5",
       "Read the modern reference table (sites by taxa) from a CSV file. Imported first, it "
       "opens the whole analysis: EOFs, envelope, diagram, reconstruction"},
      {"Command6",
       "Read the fossil table (samples down the core by taxa) from a CSV file. Imported first, "
       "it gives the EOFs of the core alone: no reference table can follow"},
      {"Command3", "Choose which EOFs stand on the axes and which take part in the envelope"},
      {"Label6", "Whether the envelope uses EOFs beyond those on screen"},
      {"Slider4", "Zoom of the figures: the axes reach 2 to the power of this value"},
      {"LabelRange", "Zoom of the figures"},
      {"Option4_0", "Show two EOFs as a flat plot"},
      {"Option4_1", "Show three EOFs in a turning view"},
      {"Check1", "Add a second picture beside each figure for a stereo pair"},
      {"Check4", "Draw ticks and the axis limits on the figures"},
      {"Check2", "Stop the turning of the 3-D view"},
      {"Check3", "Turn the 3-D view the other way"},
      {"Slider2_1", "Turn the view about the vertical axis, in degrees"},
      {"Slider2_2", "Tilt the view, in degrees"},
      {"Slider3", "Speed of the turning view"},
      {"Label_0", "Turn of the view"},
      {"Label_1", "Tilt of the view"},
      {"Label3", "Speed of the turning view"},
      {"Option6_0", "Change the EOFs on the axes by themselves, at the interval below"},
      {"Option6_1", "Change the EOFs on the axes with the buttons below"},
      {"Slider5", "Seconds between two changes of the EOFs on the axes"},
      {"Label7", "Seconds between two changes of the EOFs on the axes"},
      {"Command4_0", "Bring the previous EOFs onto the axes"},
      {"Command4_1", "Bring the next EOFs onto the axes"},
      {"Option2_0", "Write every taxon's name in the taxa figure"},
      {"Option2_1", "Mark one taxon at a time; step with the buttons or choose by name"},
      {"Option2_2", "Write no taxon names"},
      {"Combo3", "Choose the taxon to mark"},
      {"Command1_0", "Mark the previous taxon"},
      {"Command1_1", "Mark the next taxon"},
      {"Option3_0", "Write every reference site's name"},
      {"Option3_1", "Mark one site at a time; step with the buttons or choose by name"},
      {"Option3_2", "Write no site names"},
      {"Combo4", "Choose the reference site to mark"},
      {"Command2_0", "Mark the previous reference site"},
      {"Command2_1", "Mark the next reference site"},
      {"Option5_0", "Write every fossil sample's label"},
      {"Option5_1", "Mark one sample at a time; the diagram marks the same sample"},
      {"Option5_2", "Write no sample labels"},
      {"Combo1", "Choose the fossil sample to mark"},
      {"Command13_0", "Mark the sample above (the previous one)"},
      {"Command13_1", "Mark the sample below (the next one)"},
      {"Command11", "Test which fossil samples lie outside the envelope of the modern sites"},
      {"Slider1", "How tight the envelope is: to the left tighter, to the right looser"},
      {"Label1", "A tighter envelope marks more samples as outside"},
      {"Label2", "A looser envelope marks fewer samples as outside"},
      {"Label4", "Tolerance of the envelope test"},
      {"Command14", "Open the stratigraphic diagram of the fossil data with an EOF curve"},
      {"Command8", "Open the reconstruction of climate by modern analogues"},
      {"Command9", "Write a table of working values to a file"},
      {"Command7", "End the program; nothing is saved"},
      {"Picture1_0", "Taxa on the EOF axes; right click to copy or save the loadings"},
      {"Picture1_1", "Stereo partner of the taxa figure; right click to copy"},
      {"Picture2_0",
       "Reference sites and fossil samples on the EOF axes; right click to copy or save scores"},
      {"Picture2_1", "Stereo partner of the sites and samples figure; right click to copy"},
      {"Picture3", "How many EOFs the envelope uses"},
      {"Label8", "EOFs on the X, Y and Z axes"},
      {"Label9", "EOFs of the envelope test"},
      {"ProgressBar1", "Progress of the work under way"},
      {"StatusState", "How far the analysis has come"},
      {"StatusPointer", "EOF coordinates of the pointer on a figure"},
  };
  return t;
}

const Table& CorrelVarTips() {
  static const Table t = {
      {"Option2_0", "Divide each row by its sum, so that the taxa are fractions of the count"},
      {"Option2_1", "Keep the values as they are in the file"},
      {"Check1", "Give rare taxa more weight before the analysis"},
      {"Option3_0", "Take the square root of each value"},
      {"Option3_1", "Take a logarithm: 1 % becomes 0, 100 % becomes 1, below 1 % is cut to 0"},
      {"Option1_0", "EOFs of the correlation matrix: every taxon counts alike"},
      {"Option1_1", "EOFs of the variance / covariance matrix: abundant taxa count more"},
      {"Command1", "Treat the data and compute the EOFs (Return)"},
  };
  return t;
}

const Table& ControlTips() {
  static const Table t = {
      {"Combo1_1", "EOF on the X axis"},
      {"Combo1_2", "EOF on the Y axis"},
      {"Combo1_3", "EOF on the Z axis"},
      {"Check1", "Let the envelope use more EOFs than those on screen"},
      {"List1", "All EOFs; select those to add to the envelope"},
      {"List2", "EOFs that take part in the envelope"},
      {"Command1", "Add the EOFs selected on the left to the envelope"},
      {"Command2", "Remove the selected EOFs from the envelope"},
      {"Picture1_0", "EOF number"},
      {"Picture1_1", "Share of the variance that each EOF holds"},
      {"Picture1_2", "Share of the variance held by this and the EOFs before it"},
      {"VScroll1", "Scroll the table of EOFs"},
      {"Picture2", "Share of the first three EOFs and the number of taxa"},
      {"Picture3", "Share of the EOFs of the envelope"},
      {"Command3", "Apply the choice and test the envelope again"},
      {"Command4", "Apply the choice and close the panel"},
  };
  return t;
}

const Table& DiagramTips() {
  static const Table t = {
      {"Picture1", "Percentages of each taxon down the core; right click to copy"},
      {"Picture2", "Score of the chosen EOF down the core; right click to copy or save"},
      {"Picture4", "Taxon names; right click to copy"},
      {"DepthScale", "Sample labels (depth or age)"},
      {"Slider1", "Selected sample: drag to move the line through the core"},
      {"Combo2", "Choose the selected sample by its label"},
      {"UpDown1", "Step the selected sample by one"},
      {"Check1", "Draw the line of the selected sample; the main window names the same sample"},
      {"Slider2", "Half width of the EOF axis: 2 to the power of this value"},
      {"Combo1", "EOF shown down the core"},
      {"Label4", "Samples outside the envelope (bars on the EOF curve)"},
      {"Slider3", "Horizontal exaggeration of the taxon columns"},
      {"CaptionSlider3", "Horizontal exaggeration of the taxon columns"},
      {"HScroll1", "Scroll through the taxa"},
      {"StatusBar1", "Taxon, sample and value under the pointer"},
  };
  return t;
}

const Table& ColorTips() {
  static const Table t = {
      {"Picture2_0", "Red of the ramp: drag the four points"},
      {"Picture2_1", "Green of the ramp: drag the four points"},
      {"Picture2_2", "Blue of the ramp (grey in grey mode): drag the four points"},
      {"Picture1", "The colour ramp from 0 (left) to 1 (right)"},
      {"Slider1", "Values up to this one are white"},
      {"Label3", "Values up to this one are white"},
      {"LabelWhite", "Values up to the slider's value are white"},
      {"Command1", "Use the grey ramp and grey figure colours"},
      {"Command3", "Use the colour ramp and figure colours again"},
      {"Command2", "Close the window"},
  };
  return t;
}

// "Use pre-interpolated..." keeps the tip its climate import gives it.
const Table& MATTips() {
  static const Table t = {
      {"Option1_0", "Compare fossil and modern samples by their taxa proportions"},
      {"Option1_1", "Compare fossil and modern samples by their EOF values (choose how many EOFs)"},
      {"Combo2", "How many EOFs the comparison uses (with EOF values)"},
      {"Command7", "Choose the EOFs of the comparison (with EOF values)"},
      {"Check1", "Weight each analogue by its distance: nearer analogues count more"},
      {"Option3_0", "Weight by the inverse of the squared distance"},
      {"Option3_1", "Weight by the inverse of the distance"},
      {"Check2", "Enhance minor taxa before the comparison (not after an enhanced pre-treatment)"},
      {"Option2_0", "Enhance by the square root"},
      {"Option2_1", "Enhance by a logarithm"},
      {"Slider3", "Least number of analogues taken, even beyond the threshold"},
      {"Slider1", "Largest number of analogues taken"},
      {"Slider2", "Dissimilarity up to which a modern sample counts as an analogue"},
      {"Command8",
       "Interpolate climate from station tables onto the reference sites (Luvane) - needs a "
       "station table and the sites' positions"},
      {"Combo1", "Climate parameter shown and saved"},
      {"Text1", "Lower end of the curve's axis; also the range of the calibration"},
      {"Text2", "Upper end of the curve's axis; also the range of the calibration"},
      {"Check5", "Draw the conventional error bars of the analogues around the curve"},
      {"Slider6", "Smoothing of the red curve: samples in the moving average"},
      {"Picture1",
       "Reconstructed curve down the core; click a sample; right click to copy or save"},
      {"Picture2", "Estimated against observed values at the reference sites (error model)"},
      {"Picture3", "Probability of each value down the core (Tamsek); right click to save"},
      {"Picture4", "Calibration matrix from Ostrel; right click to copy or save"},
      {"Check3", "Show the line of the selected sample"},
      {"Combo3", "Choose the selected sample by its label"},
      {"UpDown1", "Step the selected sample down or up the core"},
      {"Command3",
       "Estimate every reference site from the others (leave-one-out) - needs the curve; gives "
       "the error model"},
      {"Command6",
       "Calibrate the leave-one-out error model into probabilities (Ostrel 3.0) - needs the error "
       "model"},
      {"Command4",
       "Apply the calibration matrix to the curve down the core (Tamsek 2.5) - needs the "
       "calibration (Return in Ostrel)"},
      {"Command2", "Shows whether the calibration matrix is there (not a button to press)"},
      {"Command5", "Shows whether the matrix down the core is there (not a button to press)"},
      {"Option4_0", "Show the matrices as probabilities"},
      {"Option4_1", "Show the matrices as confidence regions"},
      {"Check4_0", "Draw the most probable value down the core"},
      {"Check4_1", "Draw the average value down the core"},
      {"Slider5", "Contrast of the probability colours"},
      {"Slider7", "Size of the pictures"},
  };
  return t;
}

const Table& CalibTips() {
  static const Table t = {
      {"Command1_0",
       "Read pairs of reconstructed and estimated values (Vrec-Vest); the reconstruction window "
       "hands its error model over by itself"},
      {"Command1_1", "Read pairs of estimated and observed values (Vest-Vobs) for the error model"},
      {"Command3",
       "Run the calibration: Fig.4 to Fig.8 - needs Fig.1 and an error model (Fig.2 "
       "or Generate model)"},
      {"Command10", "Hand the calibration matrix back to the reconstruction window - needs Start"},
      {"Command2", "Close the calibration tool"},
      {"Text1", "Lower end of the range of all figures"},
      {"Text2", "Upper end of the range of all figures"},
      {"Check1", "Draw the fitted line on Fig.2"},
      {"Check4", "Make the error model from a normal spread instead of a Vest-Vobs file"},
      {"Slider4", "Spread of the generated error model, in % of the range"},
      {"Slider3", "Smoothing width, in % of the range"},
      {"Slider1", "First confidence coefficient (%); double click the number to type it"},
      {"Slider2", "Second confidence coefficient (%); double click the number to type it"},
      {"Slider5", "Samples an observed value needs to be kept"},
      {"Slider6", "Samples a reconstructed value needs to be kept"},
      {"Check5", "Skip the normalisation per observed value"},
      {"Check2", "Draw the most probable value on Fig.7 and Fig.8"},
      {"Check6", "Draw the average value on Fig.7 and Fig.8"},
      {"Picture1_0", "Fig.1: reconstructed against estimated values"},
      {"Picture1_1", "Fig.2: estimated against observed values, the error model's data"},
      {"Picture2_0", "Fig.3: the error model"},
      {"Picture2_1", "Fig.4: the product of the error model and Fig.1"},
      {"Picture2_2", "Fig.5: smoothed"},
      {"Picture2_3", "Fig.6: normalised per observed value"},
      {"Picture2_4", "Fig.7: probability; click to open the calibration chart"},
      {"Picture2_5", "Fig.8: confidence regions; click to open the calibration chart"},
  };
  return t;
}

// The map keeps its own tip: the name of the site under the pointer.
const Table& LuvaneTips() {
  static const Table t = {
      {"Command0",
       "Read the climate stations from a CSV file: name, longitude, latitude, altitude, the two "
       "lapse rates per 100 m, then one column per climate parameter (Help shows the format)"},
      {"Command2",
       "Read the positions of the reference sites from a CSV file, one row per site in the "
       "reference table's order - needs the stations (Import reference dataset)"},
      {"Command3",
       "Interpolate the climate onto the sites and check each station against the others - "
       "needs the stations and the sites' positions"},
      {"Command1",
       "Hand the interpolated climate to the reconstruction window - needs Check accuracy"},
      {"Command4", "Close the window; Launch Luvane in the reconstruction window opens it again"},
      {"Option1_1",
       "Weigh every station within the radius by its distance (see the weighting factor); a "
       "change asks for Check accuracy again"},
      {"Option1_0",
       "Take the nearest station within the radius; a change asks for Check accuracy again"},
      {"Combo1",
       "A station weighs its distance to this power (-2: the inverse square), with Interpolation; "
       "a change asks for Check accuracy again"},
      {"Text3",
       "Stations farther than this, in degrees, take no part; a change asks for Check accuracy "
       "again"},
      {"Combo2", "Unit of the radius: always degrees of longitude and latitude (not a choice)"},
      {"Text1_0", "Lower latitude of the map, read at the next redraw"},
      {"Text1_1", "Upper latitude of the map, read at the next redraw"},
      {"Text2_0", "Western longitude of the map, read at the next redraw"},
      {"Text2_1", "Eastern longitude of the map, read at the next redraw"},
  };
  return t;
}

const Table& LuvaneCorrelTips() {
  static const Table t = {
      {"Combo1",
       "Climate parameter whose estimated and observed values at the stations are shown; the "
       "reconstruction window shows the same parameter"},
      {"Text1_0", "Lower end of both axes of the scatter; type to redraw"},
      {"Text1_1", "Upper end of both axes of the scatter; type to redraw"},
  };
  return t;
}

const Table* TableFor(const QString& window) {
  static const std::map<QString, const Table*> tables = {
      {"frmMain", &MainTips()},
      {"frmCorrelVar", &CorrelVarTips()},
      {"frmControl", &ControlTips()},
      {"frmDiagram", &DiagramTips()},
      {"frmColor", &ColorTips()},
      {"frmMAT", &MATTips()},
      {"frmCalib", &CalibTips()},
      {"frmLuvane", &LuvaneTips()},
      {"frmLuvaneCorrel", &LuvaneCorrelTips()},
  };
  const auto found = tables.find(window);
  return found == tables.end() ? nullptr : found->second;
}

}  // namespace

QStringList ExplainControls(QWidget* window) {
  QStringList missing;
  const Table* table = TableFor(window->objectName());
  if (!table) return missing;
  for (const auto& [name, tip] : *table) {
    QWidget* control = window->findChild<QWidget*>(name);
    if (!control) {
      missing << name;
      continue;
    }
    control->setToolTip(tip);
  }
  return missing;
}

}  // namespace varnoth
