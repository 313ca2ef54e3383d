// SPDX-License-Identifier: MIT

#include <Pelluvia/model/OrderChecker.h>

namespace pelluvia {

namespace {

std::string textOfKind(int kind) {
    switch (kind) {
    case transferKind::tracks:
        return "tracks";
    case transferKind::routes:
        return "routes";
    case transferKind::waypoints:
        return "waypoints";
    default:
        return "kind " + std::to_string(kind);
    }
}

} // namespace

/// The rules that a call is held against, one after the other; only the first that it breaks
/// counts.
class OrderRules {
  public:
    /// Counts a call of this name.
    OrderRules(OrderChecker &checker, std::string_view call) : checker_(checker), call_(call) {
        ++checker_.calls_;
    }

    OrderRules &notFinished() {
        return holds(!checker_.isFinished_, "the finished state was the end");
    }
    /// A call that belongs to transfers of this kind.
    OrderRules &inTransferOf(int kind) {
        return notFinished()
            .holds(checker_.transfer_.has_value(), "no transfer is open")
            .holds(isOfKind(kind), "it belongs to transfers of another kind");
    }
    /// A call that must stand in a part of a transfer of this kind.
    OrderRules &inside(OrderChecker::Inside part, int kind, std::string_view otherwise) {
        return inTransferOf(kind).holds(isOfOtherKind() || checker_.inside_ == part, otherwise);
    }
    OrderRules &holds(bool rule, std::string_view otherwise) {
        if (!rule && !checker_.fault_) {
            std::string text = "call " + std::to_string(checker_.calls_) + ", ";
            text.append(call_).append(": ").append(otherwise);
            text.append("; open: ").append(checker_.open());
            checker_.fault_ = {checker_.calls_, std::move(text)};
        }
        return *this;
    }
    /// Whether the open transfer is of none of the kinds that have rules.
    [[nodiscard]] bool isOfOtherKind() const noexcept {
        const int kind = checker_.transfer_.value_or(transferKind::tracks);
        return kind != transferKind::tracks && kind != transferKind::routes &&
               kind != transferKind::waypoints;
    }

  private:
    [[nodiscard]] bool isOfKind(int kind) const noexcept {
        return checker_.transfer_ == kind || isOfOtherKind();
    }

    OrderChecker &checker_;
    std::string_view call_;
};

OrderChecker::~OrderChecker() = default;

std::string OrderChecker::open() const {
    std::string text;
    if (transfer_) {
        text = "transfer of " + textOfKind(*transfer_);
    }
    switch (inside_) {
    case Inside::Nothing:
        break;
    case Inside::Track:
        text += ", track";
        break;
    case Inside::Segment:
        text += ", track, segment";
        break;
    case Inside::Route:
        text += ", route";
        break;
    }
    if (upload_) {
        text += (text.empty() ? "upload of " : ", upload of ") + textOfKind(*upload_);
    }
    return text.empty() ? "nothing" : text;
}

void OrderChecker::newTrackSegment() {
    OrderRules rules(*this, "newTrackSegment");
    rules.inTransferOf(transferKind::tracks)
        .holds(rules.isOfOtherKind() || inside_ == Inside::Track || inside_ == Inside::Segment,
               "no track is open");
    inside_ = Inside::Segment;
}

void OrderChecker::newTrack(const Dictionary * /*extra*/) {
    OrderRules(*this, "newTrack").inTransferOf(transferKind::tracks);
    inside_ = Inside::Track;
}

void OrderChecker::newRoute(const Dictionary * /*extra*/) {
    OrderRules(*this, "newRoute").inTransferOf(transferKind::routes);
    inside_ = Inside::Route;
}

void OrderChecker::trackPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) {
    OrderRules(*this, "trackPoint")
        .inside(Inside::Segment, transferKind::tracks, "no track segment is open");
}

void OrderChecker::wayPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) {
    OrderRules rules(*this, "wayPoint");
    if (transfer_ == transferKind::routes) {
        rules.inside(Inside::Route, transferKind::routes, "no route is open");
    } else {
        rules.inTransferOf(transferKind::waypoints);
    }
}

void OrderChecker::routePoint(GPSPoint /*point*/, const Dictionary * /*extra*/) {
    OrderRules(*this, "routePoint").inside(Inside::Route, transferKind::routes, "no route is open");
}

void OrderChecker::poiPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) {
    OrderRules(*this, "poiPoint").notFinished();
}

void OrderChecker::lapInfoStart(GPSPoint /*start*/, GPSPoint /*end*/,
                                const Dictionary * /*extras*/) {
    OrderRules(*this, "lapInfoStart").notFinished();
}

void OrderChecker::startTransfer(const void * /*sender*/, int kind, const Dictionary * /*extra*/) {
    OrderRules(*this, "startTransfer")
        .notFinished()
        .holds(!transfer_, "the transfer before has not ended");
    transfer_ = kind;
    inside_ = Inside::Nothing;
}

void OrderChecker::endTransfer(int kind) {
    OrderRules(*this, "endTransfer")
        .notFinished()
        .holds(transfer_.has_value(), "no transfer is open")
        .holds(transfer_ == kind, "its kind is another one, " + textOfKind(kind));
    transfer_.reset();
    inside_ = Inside::Nothing;
}

void OrderChecker::currentPosition(GPSPoint /*point*/, int /*accuracy*/) {
    OrderRules(*this, "currentPosition").notFinished();
}

void OrderChecker::warning(const Report & /*object*/) {
    ++calls_;
}

void OrderChecker::error(const Report & /*error*/) {
    ++calls_;
}

void OrderChecker::gpsStateChange(int state) {
    OrderRules rules(*this, "gpsStateChange");
    if (state == gpsState::finished) {
        rules.holds(!hasOpen(), "finished in the midst of things");
        isFinished_ = true;
    }
}

void OrderChecker::startSending(const void * /*sender*/, int kind, const Dictionary * /*extra*/) {
    OrderRules(*this, "startSending")
        .notFinished()
        .holds(!upload_, "the upload before has not ended");
    upload_ = kind;
}

void OrderChecker::sendProgress(int /*count*/) {
    OrderRules(*this, "sendProgress").notFinished().holds(upload_.has_value(), "no upload is open");
}

void OrderChecker::endSending(int kind) {
    OrderRules(*this, "endSending")
        .notFinished()
        .holds(upload_.has_value(), "no upload is open")
        .holds(upload_ == kind, "its kind is another one, " + textOfKind(kind));
    upload_.reset();
}

} // namespace pelluvia
