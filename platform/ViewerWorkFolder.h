// The folder of one running viewer inside the suite's work directory. The Gerber path writes its
// intermediate file there, so two viewers started on one work directory never read each other's
// files. The folder goes when the viewer unloads; folders of viewers that died with their process
// go when the next viewer starts.
#pragma once

#include <string>

namespace tvx {

class ViewerWorkFolder {
public:
  // Removes the folders of processes that no longer run from workDirectory, then makes
  // "viewer-<process id>-<number>" there (the number counts the viewers of this process). When
  // the work directory cannot take it, the folder is made in the system's temporary folder; path()
  // is empty only when neither can.
  explicit ViewerWorkFolder(const std::string& workDirectory);
  ~ViewerWorkFolder();  // removes the folder and what it holds

  ViewerWorkFolder(const ViewerWorkFolder&) = delete;
  ViewerWorkFolder& operator=(const ViewerWorkFolder&) = delete;

  // The folder, closed by "/" so that file names can be appended.
  const std::string& path() const { return path_; }

  // The process id in a folder name of this kind; 0 for any other name.
  static long processOf(const std::string& folderName);

private:
  std::string path_;
};

}  // namespace tvx
