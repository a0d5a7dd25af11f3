// SPDX-License-Identifier: MIT
// Shooting dates against their peers: the text of a camera to normalised UTC fields with the day of
// the week.
#include "ula/ShootingDate.h"
#include "ula/ULATime.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <QDateTime>
#include <benchmark/benchmark.h>
#include <date/date.h>

namespace {

using tav::ula::ULATime;
using tav::ula::ULATimeStruct;

constexpr std::size_t kTexts = 4096;

std::vector<std::string> makeTexts(const char* rest) {
    std::mt19937 random(3);
    auto below = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < kTexts; ++i) {
        char text[64];
        const int length =
            std::snprintf(text, sizeof text, "%04u:%02u:%02u %02u:%02u:%02u%s", 1990 + below(40),
                          1 + below(12), 1 + below(28), below(24), below(60), below(60), rest);
        texts.emplace_back(text, static_cast<std::size_t>(length));
    }
    return texts;
}

unsigned unsignedOf(long value) {
    return static_cast<unsigned>(value);
}

ULATimeStruct fieldsOf(const tm& time) {
    return {unsignedOf(time.tm_year + 1900), unsignedOf(time.tm_mon + 1),
            unsignedOf(time.tm_mday),        unsignedOf(time.tm_wday),
            unsignedOf(time.tm_hour),        unsignedOf(time.tm_min),
            unsignedOf(time.tm_sec),         0};
}

ULATimeStruct normalized(tm time) {
    const time_t seconds = timegm(&time);
    tm utc{};
    gmtime_r(&seconds, &utc);
    return fieldsOf(utc);
}

ULATime ours(const std::string& text) {
    return ULATime::fromShootingDateString(text);
}

tav::ula::ShootingDate oursStrict(const std::string& text) {
    return *tav::ula::parseShootingDate(text);
}

ULATimeStruct strptimeTimegm(const std::string& text) {
    tm time{};
    strptime(text.c_str(), "%Y:%m:%d %H:%M:%S", &time);
    return normalized(time);
}

ULATimeStruct sscanfTimegm(const std::string& text) {
    tm time{};
    std::sscanf(text.c_str(), "%d:%d:%d %d:%d:%d", &time.tm_year, &time.tm_mon, &time.tm_mday,
                &time.tm_hour, &time.tm_min, &time.tm_sec);
    time.tm_year -= 1900;
    --time.tm_mon;
    return normalized(time);
}

ULATimeStruct atoiTimegm(const std::string& text) {
    auto piece = [&text](std::size_t begin, std::size_t length) {
        return std::atoi(text.substr(begin, length).c_str());
    };
    tm time{};
    time.tm_year = piece(0, 4) - 1900;
    time.tm_mon = piece(5, 2) - 1;
    time.tm_mday = piece(8, 2);
    time.tm_hour = piece(11, 2);
    time.tm_min = piece(14, 2);
    time.tm_sec = piece(17, 2);
    return normalized(time);
}

/// Works alike with the standard library's calendar and with the one that it was modelled on.
template <class Days, class Seconds, class Date, class Weekday, class Clock>
ULATimeStruct fieldsOfCalendar(Days day, Seconds time, Date date, Weekday weekday, Clock) {
    const Clock clock{time - day};
    return {unsignedOf(int(date.year())),
            unsigned(date.month()),
            unsigned(date.day()),
            weekday.c_encoding(),
            unsignedOf(clock.hours().count()),
            unsignedOf(clock.minutes().count()),
            unsignedOf(clock.seconds().count()),
            0};
}

ULATimeStruct dateLibrary(const std::string& text) {
    std::istringstream stream(text);
    date::sys_seconds time;
    stream >> date::parse("%Y:%m:%d %H:%M:%S", time);
    const auto day = date::floor<date::days>(time);
    return fieldsOfCalendar(day, time, date::year_month_day(day), date::weekday(day),
                            date::hh_mm_ss<std::chrono::seconds>());
}

ULATimeStruct qDateTime(const std::string& text) {
    static const QString format = QStringLiteral("yyyy:MM:dd HH:mm:ss");
    QDateTime time = QDateTime::fromString(
        QString::fromLatin1(text.data(), static_cast<int>(text.size())), format);
    time.setTimeSpec(Qt::UTC);
    const QDate day = time.date();
    const QTime clock = time.time();
    return {unsignedOf(day.year()),     unsignedOf(day.month()),
            unsignedOf(day.day()),      unsignedOf(day.dayOfWeek() % 7),
            unsignedOf(clock.hour()),   unsignedOf(clock.minute()),
            unsignedOf(clock.second()), 0};
}

/// The floor: fixed positions, digits unchecked, days counted and counted back.
ULATimeStruct fixedChrono(const std::string& text) {
    using namespace std::chrono;
    const char* const begin = text.data();
    auto two = [begin](int at) {
        return unsignedOf(begin[at] - '0') * 10 + unsignedOf(begin[at + 1] - '0');
    };
    const sys_seconds time =
        sys_days{year(static_cast<int>(two(0) * 100 + two(2))) / month(two(5)) / day(two(8))} +
        hours(two(11)) + minutes(two(14)) + seconds(two(17));
    const auto today = floor<days>(time);
    return fieldsOfCalendar(today, time, year_month_day(today), weekday(today),
                            hh_mm_ss<seconds>());
}

std::string textOf(const ULATime& time) {
    return time.toString();
}

std::string textOf(const tav::ula::ShootingDate& date) {
    return date.time.toString();
}

template <class Result>
void read(benchmark::State& state, Result (*function)(const std::string&)) {
    const std::vector<std::string> texts = makeTexts("");
    for (const std::string& text : texts)
        if (textOf(function(text)) != textOf(fixedChrono(text)))
            state.SkipWithError("not the floor's fields");
    std::size_t i = 0;
    for (auto _ : state) {
        Result result = function(texts[i]);
        benchmark::DoNotOptimize(result);
        i = (i + 1) % kTexts;
    }
}

void readWithZone(benchmark::State& state) {
    const std::vector<std::string> texts = makeTexts(".45+02:00");
    std::size_t i = 0;
    for (auto _ : state) {
        auto utc = tav::ula::parseShootingDate(texts[i])->toUtc();
        benchmark::DoNotOptimize(utc);
        i = (i + 1) % kTexts;
    }
}

std::vector<ULATime> makeTimes() {
    std::vector<ULATime> times;
    for (const std::string& text : makeTexts(""))
        times.push_back(ULATime::fromShootingDateString(text));
    return times;
}

void compare(benchmark::State& state) {
    const std::vector<ULATime> times = makeTimes();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(times[i].compare(times[(i + 1) % kTexts]));
        i = (i + 1) % kTexts;
    }
}

void print(benchmark::State& state) {
    const std::vector<ULATime> times = makeTimes();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(times[i].toString());
        i = (i + 1) % kTexts;
    }
}

const bool kRegistered = [] {
    using benchmark::RegisterBenchmark;
    RegisterBenchmark("readDate/ula", read<ULATime>, ours);
    RegisterBenchmark("readDate/fixed chrono", read<ULATimeStruct>, fixedChrono);
    RegisterBenchmark("readDate/strptime", read<ULATimeStruct>, strptimeTimegm);
    RegisterBenchmark("readDate/sscanf", read<ULATimeStruct>, sscanfTimegm);
    RegisterBenchmark("readDate/atoi", read<ULATimeStruct>, atoiTimegm);
    RegisterBenchmark("readDate/date", read<ULATimeStruct>, dateLibrary);
    RegisterBenchmark("readDate/QDateTime", read<ULATimeStruct>, qDateTime);
    RegisterBenchmark("readDateStrictly/ula", read<tav::ula::ShootingDate>, oursStrict);
    RegisterBenchmark("readDateWithZone/ula", readWithZone);
    RegisterBenchmark("compareTimes/ula", compare);
    RegisterBenchmark("printTime/ula", print);
    return true;
}();

}  // namespace
