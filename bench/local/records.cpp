// SPDX-License-Identifier: Apache-2.0
// One record written and read, beside protobuf and beside copying its bytes. A benchmark's name is the place of its
// figure: table/row/column.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "indicator.pb.h"
#include "indicator_position.h"
#include "indicator_size.h"
#include "message_parcel.h"
#include "samples.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench;

namespace {

/** Records that a parcel or a buffer takes before the next is begun, so that its allocation does not count much. */
constexpr int BATCH = 100;

template <typename T>
void Write(benchmark::State& state, const T& record)
{
    for ([[maybe_unused]] auto step : state) {
        MessageParcel parcel;
        for (int i = 0; i < BATCH; ++i) {
            benchmark::DoNotOptimize(record.Marshalling(parcel));
        }
    }
}

template <typename T>
void Read(benchmark::State& state, const T& record)
{
    MessageParcel parcel;
    for (int i = 0; i < BATCH; ++i) {
        record.Marshalling(parcel);
    }
    for ([[maybe_unused]] auto step : state) {
        parcel.RewindRead(0);
        for (int i = 0; i < BATCH; ++i) {
            const std::unique_ptr<T> read(T::Unmarshalling(parcel));
            benchmark::DoNotOptimize(read.get());
        }
    }
}

void WriteProtobuf(benchmark::State& state, const google::protobuf::MessageLite& message)
{
    std::string buffer(message.ByteSizeLong() * BATCH, '\0');
    for ([[maybe_unused]] auto step : state) {
        auto* to = reinterpret_cast<uint8_t*>(buffer.data());
        for (int i = 0; i < BATCH; ++i) {
            message.ByteSizeLong(); // As a message that is sent asks, too.
            to = message.SerializeWithCachedSizesToArray(to);
        }
        benchmark::DoNotOptimize(to);
    }
}

template <typename Message>
void ReadProtobuf(benchmark::State& state, const Message& message)
{
    const std::string bytes = message.SerializeAsString();
    for ([[maybe_unused]] auto step : state) {
        for (int i = 0; i < BATCH; ++i) {
            const auto read = std::make_unique<Message>();
            benchmark::DoNotOptimize(read->ParseFromString(bytes));
        }
    }
}

void Copy(benchmark::State& state, size_t size)
{
    const std::vector<char> from(size * BATCH);
    std::vector<char> to(size * BATCH);
    for ([[maybe_unused]] auto step : state) {
        for (size_t i = 0; i < BATCH; ++i) {
            std::memcpy(to.data() + i * size, from.data() + i * size, size);
        }
        benchmark::ClobberMemory();
    }
}

template <typename T, typename Message>
void Register(const std::string& name, const T& record, const Message& message)
{
    MessageParcel parcel;
    record.Marshalling(parcel);
    const size_t size = parcel.GetDataSize();
    const std::string table = "records, nanoseconds for 100/";
    benchmark::RegisterBenchmark((table + name + ", written/library").c_str(), Write<T>, record);
    benchmark::RegisterBenchmark((table + name + ", written/protobuf").c_str(),
        [message](benchmark::State& state) { WriteProtobuf(state, message); });
    benchmark::RegisterBenchmark((table + name + ", written/memcpy").c_str(), Copy, size);
    benchmark::RegisterBenchmark((table + name + ", read/library").c_str(), Read<T>, record);
    benchmark::RegisterBenchmark((table + name + ", read/protobuf").c_str(), ReadProtobuf<Message>, message);
    benchmark::RegisterBenchmark((table + name + ", read/memcpy").c_str(), Copy, size);
}

qnl::Detail DetailMessage(const Privacy::PrivacyEventDetail& detail)
{
    qnl::Detail message;
    message.set_bundle_name(detail.bundleName);
    message.set_uid(detail.uid);
    message.set_sensor(detail.privacySensorType);
    message.set_begin(detail.startTimestamp);
    message.set_real_end(detail.realEndTimestamp);
    message.set_shown_end(detail.showEndTimestamp);
    message.set_real_state(detail.realAccessState);
    message.set_shown_state(detail.showAccessState);
    message.set_flags(detail.eventFlags);
    return message;
}

qnl::RemindInfo RemindInfoMessage(const Privacy::PrivacyEventRemindInfo& info)
{
    qnl::RemindInfo message;
    message.set_bundle_name(info.bundleName);
    message.set_uid(info.uid);
    return message;
}

qnl::IndicatorData IndicatorMessage(const Indicator::IndicatorData& data)
{
    qnl::IndicatorData message;
    message.set_x(data.positionX);
    message.set_width(data.width);
    message.set_color(data.color);
    return message;
}

qnl::Duration DurationMessage(const Record::PermissionUsageDuration& duration)
{
    qnl::Duration message;
    message.set_bundle_name(duration.GetBundleName());
    message.set_uid(duration.GetUid());
    message.set_group(duration.GetPermissionGroup());
    message.set_last_begin(duration.GetLastBeginTimestamp());
    return message;
}

qnl::DurationQuery QueryMessage(const Record::PermissionUsageDurationQuery& query)
{
    qnl::DurationQuery message;
    for (const auto& name : query.GetBundleNames()) {
        message.add_bundle_names(name);
    }
    for (const auto& group : query.GetPermissionGroups()) {
        message.add_groups(group);
    }
    return message;
}

qnl::Position PositionMessage()
{
    qnl::Position message;
    message.set_width(1080);
    message.set_height(2340);
    return message;
}

} // namespace

void RegisterRecords()
{
    const auto detail = Details(1).front();
    Register("PrivacyEventDetail", detail, DetailMessage(detail));
    const auto info = RemindInfos(1).front();
    Register("PrivacyEventRemindInfo", info, RemindInfoMessage(info));
    const auto data = Indicators(1).front();
    Register("IndicatorData", data, IndicatorMessage(data));
    Indicator::IndicatorPosition position;
    position.screenWidth = 1080;
    position.screenHeight = 2340;
    Register("IndicatorPosition", position, PositionMessage());
    Register("IndicatorSize", Indicator::IndicatorSize(), qnl::Size());
    const auto duration = Durations(1).front();
    Register("PermissionUsageDuration", duration, DurationMessage(duration));
    const auto query = Query(10);
    Register("PermissionUsageDurationQuery, 10 names", query, QueryMessage(query));

    for (const size_t size : {10U, 100U, 1000U}) {
        Privacy::PrivacyEventDetail withName = detail;
        withName.bundleName.assign(size, 'n');
        const std::string row = "a name of " + std::to_string(size) + " bytes";
        const std::string table = "strings, nanoseconds for 100 records/" + row;
        benchmark::RegisterBenchmark((table + "/written").c_str(), Write<Privacy::PrivacyEventDetail>, withName);
        benchmark::RegisterBenchmark((table + "/read").c_str(), Read<Privacy::PrivacyEventDetail>, withName);
        benchmark::RegisterBenchmark((table + "/protobuf, written").c_str(),
            [message = DetailMessage(withName)](benchmark::State& state) { WriteProtobuf(state, message); });
        benchmark::RegisterBenchmark(
            (table + "/protobuf, read").c_str(), ReadProtobuf<qnl::Detail>, DetailMessage(withName));
    }
}
