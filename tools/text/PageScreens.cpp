#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <stdexcept>

#include "Corpus.h"

namespace corpus {
namespace {

QString article(Words& words) {
  QString html = "<main class='page'><h1>" + words.phrase(5) + "</h1><p class='dim'>By " + words.person() + " on " +
                 words.date() + "</p><div class='columns'>";
  for (int i = 0; i < 5; ++i) {
    if (i % 2) html += "<h2>" + words.phrase(3) + "</h2>";
    html += "<p>" + words.paragraph(4) + " <a href='#'>" + words.phrase(3) + "</a> " + words.sentence() + "</p>";
  }
  return html + "</div></main><aside class='other'><b>" + words.phrase(2) + "</b><p>" + words.paragraph(3) +
         "</p></aside>";
}

QString table(Words& words) {
  QString html = "<header class='other'><b>" + words.phrase(2) + "</b> <a href='#'>" + words.phrase(1) +
                 "</a> <a href='#'>" + words.phrase(2) +
                 "</a></header><main><table><tr><th>Order</th><th>Customer</th><th>Address</th><th>Date</"
                 "th><th>Status</th><th>Total</th></tr>";
  for (int i = 0; i < 16; ++i) {
    html += QString(
                "<tr><td>#%1</td><td>%2</td><td>%3</td><td>%4</td><td><span class='badge c%5'>%6</span></td><td "
                "class='right'>%7</td></tr>")
                .arg(words.number(1000, 99999))
                .arg(words.person(), words.address(), words.date())
                .arg(words.number(0, 3))
                .arg(words.pick({"Paid", "Pending", "Shipped", "Failed"}), words.amount());
  }
  return html + "</table></main>";
}

QString dashboard(Words& words) {
  QString html = "<div class='row'><nav class='other'>";
  for (int i = 0; i < 12; ++i)
    html += QString("<div class='%1'>%2</div>").arg(i == 2 ? "active" : "", words.phrase(words.number(1, 2)));
  html += "</nav><main><h2>" + words.phrase(3) + "</h2><div class='cards'>";
  for (int i = 0; i < 6; ++i) {
    html += QString(
                "<div class='card%1'><div class='dim'>%2</div><div class='big'>%3</div><div class='c%4'>%5.%6% since "
                "%7</div></div>")
                .arg(i == 3 ? " other" : "", words.phrase(2), words.amount())
                .arg(i % 4)
                .arg(words.number(1, 80))
                .arg(words.number(0, 9))
                .arg(words.date());
  }
  html += "</div><div class='card'><h3>" + words.phrase(2) + "</h3>";
  for (int i = 0; i < 6; ++i)
    html += "<div>" + words.sentence() + " <span class='dim'>" + words.date() + "</span></div>";
  return html + "</div></main></div>";
}

QString chat(Words& words) {
  QString html = "<header class='other'><b>" + words.person() + "</b> <span class='dim'>last seen " + words.date() +
                 "</span></header><main>";
  for (int i = 0; i < 9; ++i) {
    const bool isOwn = words.chance(0.45);
    html += QString("<div class='bubble %1'>%2<div class='dim'>%3:%4</div></div>")
                .arg(isOwn ? "own" : "card", words.paragraph(words.number(1, 3)))
                .arg(words.number(1, 23))
                .arg(words.number(10, 59));
  }
  return html + "</main>";
}

QString documentation(Words& words) {
  QString html = "<main class='page'><h1>" + words.phrase(2) + "</h1><p>" + words.paragraph(2) + " Use <code>" +
                 words.word() + "_" + words.word() + "()</code> " + words.sentence() + "</p><pre class='other'>";
  for (const QString& line : words.code(14)) {
    QString text = line.toHtmlEscaped();
    text.replace(QRegularExpression("\\b(if|for|return|const|auto)\\b"), "<span class='c3'>\\1</span>");
    text.replace(QRegularExpression("(&quot;.*&quot;)"), "<span class='c1'>\\1</span>");
    if (text.trimmed().startsWith("//")) text = "<span class='dim'>" + text + "</span>";
    html += text + "\n";
  }
  html += "</pre><h2>" + words.phrase(3) + "</h2><ul>";
  for (int i = 0; i < 6; ++i) html += "<li><b>" + words.word() + "</b>: " + words.sentence() + "</li>";
  return html + "</ul><p><button>" + words.phrase(1) + "</button> <button class='own'>" + words.phrase(2) +
         "</button></p></main>";
}

QString colors(bool isDark, Words& words) {
  const int hue = words.number(0, 359);
  return isDark ? QString(
                      "background:hsl(%1 18% %2%);color:hsl(%1 12% %3%);--dim:hsl(%1 8% 62%);--card:hsl(%1 16% "
                      "20%);--line:hsl(%1 10% 30%);"
                      "--c0:#3fb950;--c1:#ffa657;--c2:#58a6ff;--c3:#ff7b72;--link:#79b8ff;--badge:22%")
                      .arg(hue)
                      .arg(words.number(7, 14))
                      .arg(words.number(82, 94))
                : QString(
                      "background:hsl(%1 30% %2%);color:hsl(%1 20% %3%);--dim:hsl(%1 6% 46%);--card:#fff;--line:hsl(%1 "
                      "10% 85%);"
                      "--c0:#1a7f37;--c1:#bc4c00;--c2:#0969da;--c3:#cf222e;--link:#0b57d0;--badge:14%")
                      .arg(hue)
                      .arg(words.number(95, 99))
                      .arg(words.number(10, 25));
}

QString page(int kind, const Request& request, Words& words) {
  using Make = QString (*)(Words&);
  constexpr Make kMake[kPageKinds] = {article, table, dashboard, chat, documentation};
  const bool isDark = request.theme == Theme::dark || (request.theme == Theme::mixed && words.chance(0.4));
  const QString outer = colors(isDark, words);
  const QString other = request.theme == Theme::mixed ? colors(!isDark, words) : outer;
  const QString body = kMake[kind](words);
  return QString(
             "<!doctype html><meta charset='utf-8'><style>*{box-sizing:border-box}"
             "body{margin:0;font:%1px/1.45 '%2';%3;min-height:100vh}.other{%4}a{color:var(--link)}"
             ".page{padding:16px 40px}.columns{column-count:2;column-gap:36px}aside,header,nav,main{padding:14px 24px}"
             ".dim{color:var(--dim);font-size:.92em}table{border-collapse:collapse;width:100%}"
             "td,th{text-align:left;padding:5px 8px;border-bottom:1px solid var(--line)}.right{text-align:right}"
             ".c0{color:var(--c0)}.c1{color:var(--c1)}.c2{color:var(--c2)}.c3{color:var(--c3)}"
             ".badge{border-radius:9px;padding:1px 8px;background:color-mix(in srgb,currentColor "
             "var(--badge),transparent)}"
             ".row{display:flex}nav{min-width:200px}nav div{padding:5px "
             "8px;border-radius:5px}.active{background:#2f6fde;color:#fff}"
             ".cards{display:grid;grid-template-columns:1fr 1fr 1fr;gap:12px;margin-bottom:12px}"
             ".card{background-color:var(--card);border:1px solid var(--line);border-radius:8px;padding:10px 14px}"
             ".card.other{background-color:var(--card)}.big{font-size:1.7em;font-weight:600}"
             ".bubble{max-width:62%;width:fit-content;margin:7px 0;border-radius:14px;padding:8px 14px}"
             ".own{background:#1f6feb;color:#fff;margin-left:auto;--dim:#cfe0ff;border:0}button{font:inherit;padding:"
             "5px 14px;border-radius:6px}"
             "pre{font:%1px/1.4 'DejaVu Sans Mono';padding:12px;border-radius:6px;border:1px solid var(--line)}"
             "code{font-family:'DejaVu Sans Mono';background:color-mix(in srgb,currentColor "
             "12%,transparent);padding:1px 4px;border-radius:4px}"
             "ul{list-style:none;padding-left:12px}</style><body>%5")
      .arg(request.textPixels)
      .arg(request.family, outer, other, body);
}

/// Leaves the text fragments with their boxes in an attribute of the page.
constexpr const char* kScript = R"(<script>addEventListener('load',()=>{const found=[];
const walker=document.createTreeWalker(document.body,NodeFilter.SHOW_TEXT);
while(walker.nextNode()){const node=walker.currentNode;if(node.parentElement.closest('script,style'))continue;let part=null;
for(let i=0;i<node.length;++i){const range=document.createRange();range.setStart(node,i);range.setEnd(node,i+1);
const box=range.getClientRects()[0];if(!box||!box.width)continue;
if(part&&Math.abs(part.y-box.top)<2&&box.left>=part.right-1){part.text+=node.data[i];part.right=box.right}
else{part={x:box.left,y:box.top,right:box.right,bottom:box.bottom,text:node.data[i]};found.push(part)}}}
const whole=document.documentElement;whole.setAttribute('data-truth',btoa(unescape(encodeURIComponent(JSON.stringify(
{height:document.body.getBoundingClientRect().height,seen:innerHeight,parts:found})))))})</script>)";

QByteArray browse(const QString& browser, const QStringList& arguments) {
  QProcess process;
  process.setStandardErrorFile(QProcess::nullDevice());
  process.start(
      browser,
      QStringList{"--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars", "--no-first-run"} + arguments);
  if (!process.waitForFinished(60000)) {
    process.kill();
    process.waitForFinished();
  }
  return process.readAllStandardOutput();
}

}  // namespace

Screen pageScreen(int kind, const Request& request, const QString& browser) {
  const QTemporaryDir folder;
  Words words(request.seed);
  const QString path = folder.filePath("page.html"), shot = folder.filePath("page.png");
  QFile file(path);
  if (!file.open(QFile::WriteOnly)) throw std::runtime_error("Cannot write a page.");
  file.write((page(kind, request, words) + kScript).toUtf8());
  file.close();
  const QStringList common{"--user-data-dir=" + folder.filePath("profile"),
                           QString("--force-device-scale-factor=%1").arg(request.scale), "file://" + path};
  const auto sized = [&](int height) {
    return QStringList{QString("--window-size=%1,%2").arg(64 * request.textPixels + 200).arg(height)} + common;
  };
  const QByteArray dom = browse(browser, QStringList{"--dump-dom"} + sized(1400));
  const auto match = QRegularExpression("data-truth=\"([^\"]+)\"").match(QString::fromUtf8(dom));
  const auto truth = QJsonDocument::fromJson(QByteArray::fromBase64(match.captured(1).toLatin1())).object();
  browse(browser, QStringList{"--screenshot=" + shot} + sized(1400));
  Screen screen;
  screen.image = QImage(shot).convertToFormat(QImage::Format_RGB32);
  if (truth.isEmpty() || screen.image.isNull()) throw std::runtime_error("The browser gave no page.");
  std::vector<Fragment> fragments;
  for (const auto& value : truth["parts"].toArray()) {
    const QJsonObject part = value.toObject();
    fragments.push_back({QRectF(QPointF(part["x"].toDouble(), part["y"].toDouble()),
                                QPointF(part["right"].toDouble(), part["bottom"].toDouble())),
                         part["text"].toString()});
  }
  // Empty ground below the page would only take time.
  double bottom = 0;
  for (const Fragment& fragment : fragments) bottom = std::max(bottom, fragment.box.bottom());
  const int height = static_cast<int>(bottom + 20) * request.scale;
  if (height > screen.image.height()) throw std::runtime_error("A page is longer than the screen.");
  screen.image = screen.image.copy(0, 0, screen.image.width(), height);
  screen.truth = lines(std::move(fragments));
  return screen;
}

}  // namespace corpus
