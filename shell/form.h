#pragma once
// The window's logic: frmArpt's handlers and the state of its controls, free of any toolkit.
// The Qt window shows this state and forwards its events here; velmora-chart and the tests
// drive the same object.

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "charts/profile.h"
#include "data/files.h"  // the data folder's file names
#include "data/store.h"
#include "geometry/canvas.h"
#include "geometry/mapping.h"

namespace velmora {

struct Control {
  std::string text;  // Windows-1252; "\r" breaks a button caption into two lines
  bool enabled = true;
};

struct ComboBox {
  std::string text;
  bool enabled = false;
  std::vector<std::string> rows;
};

struct Controls {
  std::string caption = "Velmora";
  Control txtSearch{"", true};
  Control cmdSearch{"Search", true};
  Control cmdExit{"EXIT", true};
  Control cmdArpt{"APP Chart", false};
  Control cmdPlus{"Zoom In", false};
  Control cmdMinus{"Zoom Out", false};
  Control cmdZoom{"Reset Zoom", false};
  ComboBox cmbAPP{"Approach", false, {}};
  ComboBox cmbTerm{"Terminal", false, {}};
};

// The row of cmbAPP for an approach: type, blank, runway and the designator's first letter.
std::string ApproachRowText(const ApproachRow& a);

class ArptForm {
 public:
  // `dataDir` stands for the folder of the executable: the index, the VOR list and FSXFiles.
  // The profile of the approach picked is drawn on `profileCanvas`, where one is given.
  ArptForm(Store& store, Canvas& canvas, std::filesystem::path dataDir,
           Canvas* profileCanvas = nullptr);

  // Told of every caption a handler sets, while the handler runs: the search's progress has
  // to reach the screen during the scan.
  std::function<void(const std::string&)> onCaption;

  void Form_Load(std::string_view commandLine);
  void cmdSearch_Click();
  void cmdArpt_Click();
  void cmbAPP_Click(int row);
  void cmdPlus_Click();
  void cmdMinus_Click();
  void cmdZoom_Click();
  void picArpt_MouseDown(int button, int shift, double x, double y);

  // What zoom steps up to `zoom` (even, 2 to 50), then "Reset Position" and clicks worth
  // `panX`, `panY` leave, drawn once instead of at every step.
  void showView(std::int32_t zoom, std::int32_t panX, std::int32_t panY);

  // Airport files dropped on the window have been imported: `caption` tells what came in, and
  // the VOR list is read anew, as the import may have added to it.
  void importFinished(std::string caption);

  // What the user types into txtSearch (Windows-1252).
  void setSearchText(std::string text) { controls_.txtSearch.text = std::move(text); }

  const Controls& controls() const { return controls_; }
  const View& view() const { return view_; }
  const Store& store() const { return store_; }
  // The approach picked, worked out on each pick; "pick an approach" before one.
  const Profile& profile() const { return profile_; }

 private:
  void setCaption(std::string text);
  void displayArpt();
  void redraw();
  void setZoomCaption(std::string_view separator);
  void failLoad(std::string caption);
  void showProfile(Profile profile);

  Store& store_;
  Canvas& canvas_;
  std::filesystem::path dataDir_;
  Canvas* profileCanvas_;
  Controls controls_;
  View view_;
  Profile profile_;
  std::string SearchIdent, IndexIdent, IndexInfo1, IndexInfo2, IndexFile;
};

}  // namespace velmora
