#include "platform/web_browser.h"

#include <libxml/parser.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "core/primitives/encoding.h"
#include "platform/charset.h"
#include "platform/xml_stylesheet.h"

namespace lw {

struct CurlWebBrowser::Flight {
  std::atomic<bool> cancel{false};
  std::atomic<bool> finished{false};
  bool live = true;  // model thread only
  std::thread worker;
};

namespace {

// What a navigation brought back, carried from the worker to the model thread.
struct Arrival {
  int error = 0;
  std::string url;
  bool redirected = false;
  HtmlDocument document;
};

// A progress report at most this often: the meter needs no more, and the queue stays short.
constexpr auto kProgressEvery = std::chrono::milliseconds(100);

HtmlDocument ErrorPage(const std::string& url, const std::string& why) {
  HtmlDocument d;
  d.title = T("Cannot find server");
  d.body_outer_html = T("<BODY>\r\n<H1>The page cannot be displayed</H1>\r\n<P>") + FromUtf8(url) +
                      T("</P>\r\n<P>") + FromUtf8(why) + T("</P></BODY>");
  return d;
}

bool AllDigits(const std::string& s) {
  return !s.empty() && std::all_of(s.begin(), s.end(), [](unsigned char c) { return std::isdigit(c); });
}

}  // namespace

CurlWebBrowser::CurlWebBrowser(const HttpSession& session, EventPort port)
    : session_(session), port_(std::move(port)) {
  // Pages are parsed on the worker threads; the parser's global set-up must happen once before that.
  xmlInitParser();
}

CurlWebBrowser::~CurlWebBrowser() {
  Stop();
  for (auto& f : retired_)
    if (f->worker.joinable()) f->worker.join();
}

bool CurlWebBrowser::busy() const {
  return flight_ && flight_->live;
}

void CurlWebBrowser::Stop() {
  if (!flight_) return;
  flight_->live = false;
  flight_->cancel = true;
  retired_.push_back(std::move(flight_));
}

void CurlWebBrowser::ReapRetired() {
  std::vector<std::shared_ptr<Flight>> still;
  for (auto& f : retired_) {
    if (f->finished) {
      if (f->worker.joinable()) f->worker.join();
    } else {
      still.push_back(std::move(f));
    }
  }
  retired_ = std::move(still);
}

void CurlWebBrowser::Navigate(const std::string& url) {
  HttpRequest request;
  request.url = url;
  if (!history_.empty()) history_.resize(current_ + 1);
  history_.push_back(std::move(request));
  Load(history_.size() - 1);
}

void CurlWebBrowser::NavigatePost(const std::string& url, const std::string& body) {
  HttpRequest request;
  request.url = url;
  request.method = "POST";
  request.body = body;
  request.referer = location_;
  if (!history_.empty()) history_.resize(current_ + 1);
  history_.push_back(std::move(request));
  Load(history_.size() - 1);
}

void CurlWebBrowser::SubmitForm(const std::string& form, const std::map<std::string, std::string>& values) {
  const HtmlForm* chosen = nullptr;
  if (AllDigits(form)) {
    size_t index = std::stoul(form);
    if (index < document_.forms.size()) chosen = &document_.forms[index];
  } else {
    for (const HtmlForm& f : document_.forms)
      if (f.name == form) {
        chosen = &f;
        break;
      }
  }
  if (!chosen) throw RuntimeError(err::kInvalidProcedureCall, "The page has no form " + form);
  std::vector<std::pair<std::string, std::string>> fields = chosen->fields;
  for (const auto& entry : values) {
    auto it =
        std::find_if(fields.begin(), fields.end(), [&](const auto& f) { return f.first == entry.first; });
    if (it != fields.end())
      it->second = entry.second;
    else
      fields.push_back(entry);
  }
  std::string query;
  for (const auto& [name, value] : fields) {
    if (!query.empty()) query += "&";
    query += FormEncode(name) + "=" + FormEncode(value);
  }
  std::string action = ResolveUrl(location_, chosen->action.empty() ? location_ : chosen->action);
  if (chosen->method == "POST") {
    NavigatePost(action, query);
  } else {
    size_t hash = action.find('#');
    if (hash != std::string::npos) action.resize(hash);
    size_t q = action.find('?');
    if (q != std::string::npos) action.resize(q);
    Navigate(action + "?" + query);
  }
}

void CurlWebBrowser::GoBack() {
  if (!history_.empty() && current_ > 0) Load(current_ - 1);
}

void CurlWebBrowser::GoForward() {
  if (current_ + 1 < history_.size()) Load(current_ + 1);
}

void CurlWebBrowser::Refresh() {
  if (!history_.empty()) Load(current_);
}

void CurlWebBrowser::Load(size_t index) {
  Stop();
  ReapRetired();
  current_ = index;
  auto flight = std::make_shared<Flight>();
  flight_ = flight;
  std::shared_ptr<void> hold = port_.Hold();
  EventPort port = port_;
  const HttpSession* session = &session_;
  HttpRequest request = history_[index];

  flight->worker = std::thread([this, flight, hold, port, session, request, index]() mutable {
    auto last_report = std::chrono::steady_clock::now() - kProgressEvery;
    FetchControl control;
    control.cancel = &flight->cancel;
    control.progress = [&](long long received, long long expected) {
      auto now = std::chrono::steady_clock::now();
      if (now - last_report < kProgressEvery) return;
      last_report = now;
      port.post([this, flight, received, expected] {
        if (flight->live && handlers_.progress) handlers_.progress(received, expected);
      });
    };
    Arrival arrival;
    try {
      HttpResponse response = session->Perform(request, control);
      arrival.url = response.url.empty() ? request.url : response.url;
      arrival.redirected = arrival.url != request.url;
      // A page of XML that names a stylesheet is shown as the page the stylesheet makes of it.
      if (auto styled = ApplyXmlStylesheet(response.body, arrival.url))
        arrival.document = HtmlDocument::Parse(DecodePage(styled->bytes, styled->content_type));
      else
        arrival.document = HtmlDocument::Parse(DecodePage(response.body, response.content_type));
    } catch (const RuntimeError& e) {
      arrival.error = e.number();
      arrival.url = kNavigationErrorPage + request.url;
      arrival.document = ErrorPage(request.url, e.what());
    }
    port.post([this, flight, index, arrival = std::move(arrival)]() mutable {
      if (!flight->live) return;
      flight->live = false;
      // A page reached through a redirect is the page the history goes back to, fetched plainly.
      if (arrival.redirected && arrival.error == 0 && index < history_.size()) {
        HttpRequest again;
        again.url = arrival.url;
        history_[index] = again;
      }
      location_ = arrival.url;
      document_ = std::move(arrival.document);
      last_error_ = arrival.error;
      if (handlers_.progress) handlers_.progress(-1, 0);
      if (handlers_.navigate_complete) handlers_.navigate_complete(location_);
      if (handlers_.document_complete) handlers_.document_complete(location_);
    });
    flight->finished = true;
    hold.reset();
  });
}

}  // namespace lw
