// SPDX-License-Identifier: Apache-2.0
#include <climits>

#include "client_fixture.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

void PrivacyIndicatorClient::WithSystemAbilityProxy(
    const std::function<void(const sptr<PrivacyIndicatorServiceIntf>&)>& func)
{
    ++Test::Gate::passed;
    if (Test::Gate::before) {
        Test::Gate::before();
    }
    func(Test::Gate::service);
}

namespace Test {
namespace {

struct Request {
    std::function<int32_t()> send;
    std::string call;          // As the service sees it.
    std::string nameOfFailure; // The function that the log names when there is no service.
    Lines begin;               // What is logged before it,
    Lines perElement;          // behind it for each element of its vector,
    Lines end;                 // and at last.
};

class RequestTest : public ClientTest {
protected:
    // Each vector holds one element before the first request, and gets one more from each that reaches the service.
    std::vector<PrivacyEventDetail> details{*Read<PrivacyEventDetail>(DETAIL.bytes)};
    std::vector<IndicatorData> indicators{*Read<IndicatorData>(DATA.bytes)};
    std::vector<PermissionUsageDuration> durations{*Read<PermissionUsageDuration>(DURATION.bytes)};
    IndicatorPosition position = *Read<IndicatorPosition>(POSITION.bytes);
    IndicatorSize size = *Read<IndicatorSize>(SIZE.bytes);
    PermissionUsageDurationQuery query = *Read<PermissionUsageDurationQuery>(QUERY.bytes);
    PrivacySensorType sensor = PrivacySensorType::LOCATION;

    const std::vector<Request> requests = {
        {[this] { return client.GetPrivacyEventDetails(8, details); }, "Details 8", "GetPrivacyEventDetails", {},
            {Line('D', "GetPrivacyEventDetails: '" + DETAIL.text + "'")}, {}},
        {[this] { return client.GetPrivacyEventDetailsByPrivacySensorType(-4, sensor, details); }, "Details -4 2",
            "GetPrivacyEventDetails", {},
            {Line('I', "GetPrivacyEventDetailsByPrivacySensorType: '" + DETAIL.text + "'")}, {}},
        {[this] { return client.GetActiveIndicators(indicators); }, "Active", "GetActiveIndicators", {},
            {Line('D', "GetActiveIndicators: '" + DATA.text + "'")}, {}},
        {[this] { return client.TurnOnIndicator(sensor, position, size, 3); }, "On 2" + POSITION.text + SIZE.text + "3",
            "TurnOnIndicator", {Line('I', "TurnOnIndicator: TurnOnIndicator")}, {}, {}},
        {[this] { return client.TurnOffIndicator(sensor, 100); }, "Off 2 100", "TurnOnIndicator",
            {Line('I', "TurnOffIndicator: TurnOffIndicator")}, {}, {}},
        {[this] { return client.GetPermissionUsageDurationSummary(query, durations); }, "Usage " + QUERY.text,
            "GetPermissionUsageDurationSummary",
            {Line('I', "GetPermissionUsageDurationSummary: start GetPermissionUsageDurationSummary in client.")}, {},
            {Line('I', "GetPermissionUsageDurationSummary: stop GetPermissionUsageDurationSummary in client.")}},
        {[this] { return client.NotifyPowerEvent(1); }, "Power 1", "NotifyPowerEvent",
            {Line('I', "NotifyPowerEvent: event: 1")}, {}, {}},
    };
};

TEST_F(RequestTest, ReachesTheServiceAsItWasMadeAndBringsBackItsCodeAndElements)
{
    Gate::service->elements = 1;
    Gate::service->result = -4711;
    Gate::before = [this] {
        sensor = PrivacySensorType::CAMERA;
        position = {};
        size = {};
    };
    for (const Request& request : requests) {
        SCOPED_TRACE(request.call);
        sensor = PrivacySensorType::LOCATION;
        position = *Read<IndicatorPosition>(POSITION.bytes);
        size = *Read<IndicatorSize>(SIZE.bytes);
        details.resize(1);
        EXPECT_EQ(request.send(), -4711);
        EXPECT_EQ(Calls(), Lines{request.call});
        EXPECT_EQ(log.Take(), request.begin + Repeated(2, request.perElement) + request.end);
    }
    EXPECT_EQ(Gate::passed, 7);
    EXPECT_EQ(std::make_pair(indicators.size(), durations.size()), std::make_pair(size_t{2}, size_t{2}));
}

TEST_F(RequestTest, WithoutServiceIsAnErrorInTheLogAlone)
{
    Gate::service = nullptr;
    for (const Request& request : requests) {
        SCOPED_TRACE(request.call);
        EXPECT_EQ(request.send(), 0);
        const Lines failure = {Line('E', request.nameOfFailure + ": proxy is nullptr, please check.")};
        EXPECT_EQ(log.Take(), request.begin + failure + request.perElement + request.end);
    }
    EXPECT_EQ(details.size() + indicators.size() + durations.size(), 3U);
    EXPECT_EQ(client.NotifyPowerEvent(0), 0);
    EXPECT_EQ(Gate::passed, 8);
    for (const int32_t event : {-1, 2, INT_MIN, INT_MAX}) {
        log.Take();
        EXPECT_EQ(client.NotifyPowerEvent(event), -1);
        const std::string end = "event: " + std::to_string(event);
        EXPECT_EQ(
            log.Take(), (Lines{Line('I', "NotifyPowerEvent: " + end), Line('E', "NotifyPowerEvent: error " + end)}));
    }
    EXPECT_EQ(Gate::passed, 8);
}

} // namespace
} // namespace Test
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
