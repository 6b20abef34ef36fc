// What a test of the user's road needs: an X server of its own (Xvfb), the host started on it,
// real X input through xdotool, and the host's own queries (TARVEX,IMPORTROWS and friends) and
// view pictures to see what the user sees. Every window's road test derives from HostDriver.
#pragma once

#include "support/CliProcess.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <map>
#include <ostream>
#include <set>
#include <string>

// Failures show texts as text, not as the bytes of their characters.
inline void PrintTo(const QString& text, std::ostream* out) {
  *out << '"' << text.toStdString() << '"';
}

namespace test {

// A plain RS-274-D file: two traces with D10, two pads with D11; format 2.3 inch, trailing zeros
// omitted.
inline constexpr const char* PlainTracesAndPads = "G54D10*\nX01Y01D02*\nX02Y01D01*\nX02Y015D01*\n"
                                                  "D11*\nX012Y012D03*\nX018Y012D03*\nM02*\n";

// Polls until done() holds or the time is over; true when it held.
inline bool waitUntil(const std::function<bool()>& done, int milliseconds = 10000) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  while (std::chrono::steady_clock::now() < end) {
    if (done())
      return true;
    QThread::msleep(100);
  }
  return done();
}

// An X server for the test alone.
class XServer {
public:
  // Ended with SIGTERM, so that the server removes its lock file and socket; a killed one leaves
  // them behind for every later run to step over.
  ~XServer() {
    if (server_.state() == QProcess::NotRunning)
      return;
    server_.terminate();
    if (!server_.waitForFinished(5000)) {
      server_.kill();
      server_.waitForFinished(5000);
    }
  }
  // The server chooses a free display itself (-displayfd) and writes its number when it is ready
  // for clients; a stale lock of a dead server does not stop it. It does not reset when its last
  // client leaves, so a host started again right after one ended can always connect.
  bool start(std::string& why) {
    const QString program = QStandardPaths::findExecutable("Xvfb");
    if (program.isEmpty()) {
      why = "Xvfb is missing (tools/bootstrap.sh installs it)";
      return false;
    }
    server_.start(program, {"-displayfd", "1", "-screen", "0", "1280x1024x24", "-nolisten", "tcp",
                            "-noreset"});
    QByteArray number;
    waitUntil([&] {
      server_.waitForReadyRead(100);
      number += server_.readAllStandardOutput();
      return number.contains('\n') || server_.state() == QProcess::NotRunning;
    });
    bool ok = false;
    number.trimmed().toInt(&ok);
    if (!ok) {
      why = "no X server could be started: " + server_.readAllStandardError().toStdString();
      return false;
    }
    display = ":" + QString::fromLatin1(number.trimmed());
    return true;
  }
  QString display;

private:
  QProcess server_;
};

// A rectangle on the screen as the host tells it: x, y, width, height.
struct ScreenRect {
  int x = 0, y = 0, width = 0, height = 0;
  bool valid() const { return width > 0 && height > 0; }
};

inline ScreenRect rectFrom(const QString& text) {
  const QStringList parts = text.split(',');
  if (parts.size() < 4)
    return {};
  const int n = int(parts.size());
  return {parts[n - 4].toInt(), parts[n - 3].toInt(), parts[n - 2].toInt(), parts[n - 1].toInt()};
}

// The box around every pixel that is not the background (the colour of the corner).
struct Ink {
  int left = 0, top = 0, right = -1, bottom = -1;
  long pixels = 0;
  int width() const { return right - left + 1; }
  int height() const { return bottom - top + 1; }
};

inline Ink inkOf(const QImage& picture) {
  Ink ink;
  if (picture.isNull())
    return ink;
  const QRgb background = picture.pixel(0, 0);
  ink.left = picture.width();
  ink.top = picture.height();
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x)
      if (picture.pixel(x, y) != background) {
        ++ink.pixels;
        ink.left = std::min(ink.left, x);
        ink.right = std::max(ink.right, x);
        ink.top = std::min(ink.top, y);
        ink.bottom = std::max(ink.bottom, y);
      }
  return ink;
}

// The pixels of after in colours that before does not hold: what a new layer added.
inline long pixelsInNewColours(const QImage& before, const QImage& after) {
  std::set<QRgb> known;
  for (int y = 0; y < before.height(); ++y)
    for (int x = 0; x < before.width(); ++x)
      known.insert(before.pixel(x, y));
  long added = 0;
  for (int y = 0; y < after.height(); ++y)
    for (int x = 0; x < after.width(); ++x)
      added += known.count(after.pixel(x, y)) == 0;
  return added;
}

// What a layer holds, as the host's LAYER query tells it, in store units.
struct LayerFacts {
  long items = 0, minX = 0, minY = 0, maxX = 0, maxY = 0, widest = 0;
  double width() const { return double(maxX - minX); }
};

// A menu's entries as the host tells them: the rows shown, the checked one, and each entry's
// text and place by its caption (rows of a row array) or name.
struct MenuFacts {
  QStringList shown;
  QString checked;
  std::map<QString, std::pair<QString, ScreenRect>> places;
};

// What the host's VIEWSTATE tells: the view (centre's Y negated, as the view keeps it), the
// running tool, the message line and the two position panels. Views are equal by place alone.
struct ViewNow {
  int64_t precision = 0, centreX = 0, centreY = 0;
  int tool = -1;
  QString message, xPanel, yPanel;
  bool operator==(const ViewNow& o) const {
    return precision == o.precision && centreX == o.centreX && centreY == o.centreY;
  }
};

class HostDriver : public ::testing::Test {
protected:
  void SetUp() override {
    test::coreApplication();
    ASSERT_TRUE(home.isValid());
    std::string why;
    ASSERT_TRUE(!QStandardPaths::findExecutable("xdotool").isEmpty())
        << "xdotool is missing (tools/bootstrap.sh installs it)";
    ASSERT_TRUE(x.start(why)) << why;
    environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", x.display);
    environment.insert("QT_QPA_PLATFORM", "xcb");
    environment.insert("XDG_CONFIG_HOME", home.filePath("config"));
    environment.insert("XDG_CACHE_HOME", home.filePath("cache"));
    environment.insert("XDG_RUNTIME_DIR", home.path());
    host.setProcessEnvironment(environment);
    host.setProcessChannelMode(QProcess::SeparateChannels);
    // The roads measure the artwork's ink in the view's pictures: the ruler, on by default,
    // starts off (the other view options as by default). The measuring road turns it on.
    QDir().mkpath(home.filePath("config/tarvex"));
    QFile settings(home.filePath("config/tarvex/tarvex.ini"));
    ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
    settings.write("[GBRVIEWER]\r\nVIEW=0,1,1,0,0,0,1\r\n");
  }
  void TearDown() override { stop(); }

  // Ends the host as the suite does.
  void stop() {
    if (host.state() != QProcess::NotRunning) {
      host.write("All,EX\n");
      if (!host.waitForFinished(5000))
        host.kill();
      host.waitForFinished(5000);
    }
  }
  // The host ended and started again with no file, as the user restarts the viewer.
  void restart() {
    stop();
    output.clear();
    host.start(binary("tarvex-gbrviewer"), {});
    ASSERT_TRUE(host.waitForStarted(10000));
  }

  // xdotool with the test's display; its standard output.
  QString xdo(const QStringList& arguments) {
    QProcess tool;
    tool.setProcessEnvironment(environment);
    tool.start("xdotool", arguments);
    tool.waitForFinished(10000);
    return QString::fromUtf8(tool.readAllStandardOutput()).trimmed();
  }
  // Windows may take long to come up in a sanitizer build on a busy machine.
  QString visibleWindow(const QString& name, int milliseconds = 30000) {
    QString found;
    waitUntil(
        [&] {
          found = xdo({"search", "--onlyvisible", "--name", name}).section('\n', 0, 0);
          return !found.isEmpty();
        },
        milliseconds);
    return found;
  }
  void click(const ScreenRect& r, int atX) {
    xdo({"mousemove", QString::number(r.x + atX), QString::number(r.y + r.height / 2)});
    xdo({"click", "1"});
  }
  // What the file request of an import does: the path typed into its name field, then Enter.
  void typeIntoFileRequest(const QString& path) {
    const QString request = visibleWindow("Select File for Import");
    ASSERT_FALSE(request.isEmpty()) << "no file request";
    // On a loaded machine (a sanitizer build) the first keys can reach the request before its
    // name field has the focus: the name is typed again while the request stays.
    for (int attempt = 0; attempt < 3; ++attempt) {
      xdo({"windowfocus", "--sync", request});
      xdo({"key", "ctrl+a"});
      xdo({"type", "--delay", "5", path});
      xdo({"key", "Return"});
      if (waitUntil([&] {
            return xdo({"search", "--onlyvisible", "--name", "Select File for Import"}).isEmpty();
          }))
        return;
    }
  }

  // Sends a host query and gathers the answer lines up to the one that holds last.
  QStringList ask(const QString& query, const QString& last) {
    QString& heard = *heard_;
    const qsizetype from = heard.size();
    talking_->write((query + "\n").toUtf8());
    QStringList lines;
    waitUntil([&] {
      talking_->waitForReadyRead(50);
      heard += QString::fromUtf8(talking_->readAllStandardOutput());
      lines = heard.mid(from).split('\n', Qt::SkipEmptyParts);
      for (const QString& line : lines)
        if (line.contains(last))
          return true;
      return false;
    });
    return lines;
  }
  // The import window's rows as shown, caption to value; its message line under "#message" and
  // its rows shown whole under "#shown" of "#rows" ("NONE" without the window).
  std::map<QString, QString> importRows() {
    std::map<QString, QString> rows;
    for (const QString& line : ask("TARVEX,IMPORTROWS", "IMPORTROWS,")) {
      const QStringList parts = line.split('\t');
      if (parts.size() == 4 && parts[1] == "IMPORTROW")
        rows[parts[2]] = parts[3];
      else if (parts.size() == 3 && parts[1] == "IMPORTMSG")
        rows["#message"] = parts[2];
      else if (parts.size() == 2 && parts[1].startsWith("IMPORTROWS,")) {
        const QStringList counts = parts[1].split(',');
        rows["#rows"] = counts.value(1);
        rows["#shown"] = counts.value(2);
      }
    }
    return rows;
  }
  // The import window's rows once ok holds; a sanitizer build may take long to scan and show.
  std::map<QString, QString> rowsWhen(const std::function<bool(std::map<QString, QString>&)>& ok) {
    std::map<QString, QString> rows;
    waitUntil([&] { return ok(rows = importRows()); }, 30000);
    return rows;
  }
  QString messageLine() {
    const QStringList lines = ask("TARVEX,MSGLINE", "MSGLINE");
    return lines.isEmpty() ? QString() : lines.back().section('\t', 2);
  }
  ScreenRect place(const QString& query, const QString& answer) {
    const QStringList lines = ask("TARVEX," + query, answer);
    return lines.isEmpty() ? ScreenRect{} : rectFrom(lines.back());
  }
  QImage view(const QString& name) {
    const QString file = home.filePath(name);
    ask("TARVEX,SAVEVIEW," + file, "SAVEVIEW,");
    return QImage(file);
  }

  LayerFacts layer(int number) {
    LayerFacts facts;
    for (const QString& line : ask("TARVEX,LAYER," + QString::number(number), "LAYER,")) {
      const QStringList parts = line.section('\t', 1).split(',');
      if (parts.size() == 8) {
        long* fields[] = {&facts.items, &facts.minX, &facts.minY,
                          &facts.maxX,  &facts.maxY, &facts.widest};
        for (int i = 0; i < 6; ++i)
          *fields[i] = parts[i + 2].toLong();
      }
    }
    return facts;
  }
  // rowPrefix names the rows of a row array, which are keyed by their captions.
  MenuFacts menu(const QString& name, const QString& rowPrefix = "M_ActiveCategories_") {
    MenuFacts m;
    for (const QString& line : ask("TARVEX,MENU," + name, "MENU,")) {
      const QStringList f = line.split('\t');
      if (f.size() != 8 || f[1] != "MENUITEM")
        continue;
      const bool row = f[2].startsWith(rowPrefix);
      m.places[row ? f[3] : f[2]] = {f[3], rectFrom("," + f[7])};
      if (row && f[4] == "shown")
        m.shown << f[3];
      if (f[5] == "checked")
        m.checked = f[3];
    }
    return m;
  }
  // Opens a menu of the main window with its Alt key and clicks the entry.
  void choose(const QString& menuName, const QString& altKey, const QString& entry) {
    xdo({"windowfocus", "--sync", visibleWindow("Viewer & Import")});
    xdo({"key", "alt+" + altKey});
    ScreenRect place;
    waitUntil([&] { return (place = menu(menuName).places[entry].second).valid(); });
    ASSERT_TRUE(place.valid()) << entry.toStdString();
    click(place, place.width / 2);
  }
  // A file of the test's home with text; its path.
  QString writeHomeFile(const QString& name, const char* text) {
    const QString path = home.filePath(name);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
    return path;
  }
  // The host started without a file, and a Gerber file imported through the file request and the
  // import window into the layer of that name; the import window stays open.
  void importIntoLayer(const QString& path, const QString& layerName) {
    host.start(binary("tarvex-gbrviewer"), {});
    ASSERT_TRUE(host.waitForStarted(10000));
    typeIntoFileRequest(path);
    rowsWhen([](auto& r) { return r.count("Import to layer") > 0; });
    const ScreenRect layerCell = place("CELL,Import to layer", "CELL,");
    ASSERT_TRUE(layerCell.valid());
    click(layerCell, layerCell.width - 8);
    xdo({"type", "--delay", "20", layerName});
    xdo({"key", "Return"});
    rowsWhen([](auto& r) { return r["#message"].contains("Import successful"); });
  }
  // The host on the whole demo board, each file on its layer.
  void startOnAllLayers() {
    QStringList arguments;
    for (const auto& [layer, name] : {std::pair{"3", "demo-top.gbr"},
                                      {"4", "demo-bottom.gbr"},
                                      {"1", "demo-silk-top.gbr"},
                                      {"2", "demo-mask-top.gbr"},
                                      {"30", "demo-outline.gbr"},
                                      {"31", "demo.drl"}})
      arguments << "--layer" << layer << QDir(TVX_SOURCE_DIR).filePath(QString("samples/") + name);
    host.start(test::binary("tarvex-gbrviewer"), arguments);
    ASSERT_TRUE(host.waitForStarted(10000));
    ASSERT_TRUE(waitUntil([&] { return messageLine().endsWith("Import successful"); }));
  }
  // The host on the demo board's top copper and its drill file, both imported.
  void startOnDemoBoard() {
    QStringList files;
    for (const char* name : {"demo-top.gbr", "demo.drl"})
      files << QDir(TVX_SOURCE_DIR).filePath(QString("samples/") + name);
    host.start(test::binary("tarvex-gbrviewer"), files);
    ASSERT_TRUE(host.waitForStarted(10000));
    waitUntil([&] { return messageLine().endsWith("Import successful"); });
  }
  ViewNow viewNow() {
    const QStringList lines = ask("TARVEX,VIEWSTATE", "VIEWSTATE");
    ViewNow now;
    if (lines.isEmpty())
      return now;
    const QString answer = lines.back().section('\t', 1);
    const QStringList fields = answer.section('\t', 0, 0).split(',');
    if (fields.size() == 5) {
      now.precision = fields[1].toLongLong();
      now.centreX = fields[2].toLongLong();
      now.centreY = fields[3].toLongLong();
      now.tool = fields[4].toInt();
    }
    now.message = answer.section('\t', 1, 1);
    now.xPanel = answer.section('\t', 2, 2);
    now.yPanel = answer.section('\t', 3, 3);
    return now;
  }
  ViewNow viewNowWhen(const std::function<bool(const ViewNow&)>& ok) {
    ViewNow now;
    waitUntil([&] { return ok(now = viewNow()); });
    return now;
  }
  // The demo board's top copper is centred on (20, 15) mm in file coordinates: a file point in
  // millimetres is found in the world through the middle of the layer's frame.
  static std::pair<long, long> onDemoBoard(const LayerFacts& top, double fileX, double fileY) {
    return {(top.minX + top.maxX) / 2 + std::lround((fileX - 20.0) * 100000),
            (top.minY + top.maxY) / 2 + std::lround((fileY - 15.0) * 100000)};
  }
  QPoint screenOnDemoBoard(const LayerFacts& top, double fileX, double fileY) {
    const auto [worldX, worldY] = onDemoBoard(top, fileX, fileY);
    return screenPoint(worldX, worldY);
  }
  // The screen point of a world point in the view as it stands.
  QPoint screenPoint(long worldX, long worldY) {
    const QStringList state = ask("TARVEX,VIEWSTATE", "VIEWSTATE").value(0).split('\t');
    const QStringList v = state.value(1).split(',');  // VIEWSTATE,precision,cx,-cy,tool
    const ScreenRect view = place("PLACE,ViewPicture", "PLACE,");
    const double precision = std::max(1.0, v.value(1).toDouble());
    return {int(view.x + view.width / 2 + (worldX - v.value(2).toDouble()) / precision),
            int(view.y + view.height / 2 + (-v.value(3).toDouble() - worldY) / precision)};
  }

  // The queries go to another host of the test (with what it said so far) until talkTo() is
  // called again with no arguments.
  void talkTo(QProcess* process = nullptr, QString* heard = nullptr) {
    talking_ = process ? process : &host;
    heard_ = heard ? heard : &output;
  }

  QTemporaryDir home;
  XServer x;
  QProcessEnvironment environment;
  QProcess host;
  QString output;

private:
  QProcess* talking_ = &host;
  QString* heard_ = &output;
};

}  // namespace test
