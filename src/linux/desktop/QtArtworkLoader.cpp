#include "linux/desktop/QtArtworkLoader.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>
#include <cmath>
#include <functional>
#include <optional>
#include <utility>

#include "linux/system/PosixFileSystem.h"

namespace sunpane {
namespace {

// What a reply holds back until it is read; more than that is left with the server.
constexpr qint64 readBufferBytes = qint64{64} * 1024;

QNetworkRequest requestFor(const QUrl& url) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(QtArtworkLoader::maximumRedirects);
    // Whoever names the cover learns nothing about the user from the request for it.
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    // Pictures are compressed already, and what would unpack to more than the bound is not even sent.
    request.setRawHeader("Accept-Encoding", "identity");
    return request;
}

std::string pathIn(const QUrl& url) {
    const bool isLocal = url.host().isEmpty() || url.host() == QLatin1String("localhost");
    return isLocal ? QUrl::fromLocalFile(url.path()).toLocalFile().toStdString() : std::string();
}

}  // namespace

/// The downloads under way, by Qt's network stack.
class QtArtworkLoader::Downloads {
public:
    using Done = std::function<void(std::optional<std::string> bytes)>;

    /// `done` is called once, from the main loop; not at all when this is destroyed first.
    void begin(const QUrl& url, const Done& done) {
        QNetworkReply* reply = network_.get(requestFor(url));
        reply->setReadBufferSize(readBufferBytes);
        const auto bytes = std::make_shared<std::string>();
        QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply, bytes] {
            const QByteArray piece = reply->readAll();
            bytes->append(piece.constData(), static_cast<std::size_t>(piece.size()));
            if (bytes->size() > maximumBytes) reply->abort();
        });
        QObject::connect(reply, &QNetworkReply::finished, &network_, [reply, bytes, done] {
            const QByteArray rest = reply->error() == QNetworkReply::NoError ? reply->readAll() : QByteArray();
            bytes->append(rest.constData(), static_cast<std::size_t>(rest.size()));
            const bool whole = reply->error() == QNetworkReply::NoError && bytes->size() <= maximumBytes;
            reply->deleteLater();
            done(whole ? std::optional(std::move(*bytes)) : std::nullopt);
        });
        QTimer::singleShot(static_cast<int>(std::lround(longestDownload * 1000)), reply, [reply] { reply->abort(); });
    }

private:
    QNetworkAccessManager network_;
};

/// What is left to handlers that outlast the loader.
struct QtArtworkLoader::State {
    int loads = 0;
};

QtArtworkLoader::QtArtworkLoader(RunLoop& runLoop, WorkQueueFactory& queues)
    : runLoop_(runLoop), state_(std::make_shared<State>()), queue_(queues.makeQueue("app.dawnly.Dawnly.artwork")) {}

QtArtworkLoader::~QtArtworkLoader() = default;

void QtArtworkLoader::load(const std::string& url, Handler done) {
    const std::weak_ptr<State> weak = state_;
    const auto finish = [weak, done = std::move(done)](const std::shared_ptr<const Artwork>& artwork) {
        const auto state = weak.lock();
        if (!state) return;
        --state->loads;
        done(artwork);
    };
    const QUrl address(QString::fromStdString(url), QUrl::StrictMode);
    const bool isRemote = address.scheme() == QLatin1String("https") && !address.host().isEmpty();
    const std::string path = address.scheme() == QLatin1String("file") ? pathIn(address) : std::string();
    const bool isTooMuch = state_->loads >= maximumLoads;
    ++state_->loads;
    if (isTooMuch || !address.isValid() || (!isRemote && path.empty())) {
        runLoop_.post([finish] { finish(nullptr); });
        return;
    }
    const auto decode = [finish, &loop = runLoop_](const std::string& bytes) {
        loop.post([finish, artwork = decodeArtwork(bytes)] { finish(artwork); });
    };
    if (!isRemote) {
        queue_->post([path, decode] { decode(PosixFileSystem().read(path, maximumBytes).bytes); });
        return;
    }
    if (!downloads_) downloads_ = std::make_unique<Downloads>();
    downloads_->begin(address, [finish, decode, &queue = *queue_](std::optional<std::string> bytes) {
        if (!bytes) return finish(nullptr);
        queue.post([decode, content = std::move(*bytes)] { decode(content); });
    });
}

}  // namespace sunpane
