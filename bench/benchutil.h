#pragma once
// Timing and printing shared by the benchmark's figures: one line per figure,
// "name: median ms (min–max)  note", so two builds can be compared run by run.
#include <QtCore/QElapsedTimer>
#include <QtCore/QString>
#include <QtCore/QTextStream>

#include <algorithm>
#include <vector>

namespace Bench {

struct Stats
{
    double median = 0;
    double min = 0;
    double max = 0;
};

// Runs `fn` `runs` times (at least once) and keeps the wall-clock milliseconds of each run.
template<class Fn> Stats measure(int runs, Fn &&fn)
{
    std::vector<double> ms;
    for (int k = 0; k < std::max(runs, 1); ++k) {
        QElapsedTimer t;
        t.start();
        fn();
        ms.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    const size_t n = ms.size();
    return {n % 2 ? ms[n / 2] : (ms[n / 2 - 1] + ms[n / 2]) / 2, ms.front(), ms.back()};
}

// Milliseconds with as many decimals as the size deserves.
inline QString ms(double v)
{
    return QString::number(v, 'f', v >= 100 ? 0 : v >= 10 ? 1 : v >= 1 ? 2 : 3);
}

inline void print(QTextStream &out, const QString &name, const Stats &s, const QString &note)
{
    out << name << ": " << ms(s.median) << " ms (" << ms(s.min) << u'–' << ms(s.max) << ')';
    if (!note.isEmpty())
        out << "  " << note;
    out << Qt::endl;
}

// Measures `fn` and prints its line.
template<class Fn> void figure(QTextStream &out, int runs, const QString &name, const QString &note, Fn &&fn)
{
    print(out, name, measure(runs, fn), note);
}

} // namespace Bench
