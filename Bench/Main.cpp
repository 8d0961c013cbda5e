// The measures of the whole system in one table. Usage: Bench [--json FILE] [GROUP...]
#include <stdio.h>
#include <string.h>

#include "Bench.h"

namespace {

std::vector<CBenchGroup> &Groups()
{
    static std::vector<CBenchGroup> s_groups;
    return s_groups;
}

const char *s_runningGroup = nullptr;

void PrintTable()
{
    printf("%-52s %12s %12s %-5s  %-44s %6s %6s\n", "measure", "ours", "peer", "unit", "peer",
           "ratio", "limit");
    for (const CBenchRow &row : BenchRows()) {
        printf("%-52s %12.1f %12.1f %-5s  %-44s %6.2f ", row.name, row.ours, row.peer, row.unit,
               row.peerName, row.ratio);
        if (row.ceiling > 0)
            printf("%6.2f%s\n", row.ceiling, row.ratio > row.ceiling ? "  ABOVE" : "");
        else
            printf("%6s\n", "-");
    }
}

// Text of ours, in which nothing but quotes needs to be escaped.
void WriteJsonText(FILE *file, const char *name, const char *text)
{
    fprintf(file, "\"%s\": \"", name);
    for (; *text; ++text)
        fprintf(file, *text == '"' ? "\\%c" : "%c", *text);
    fputs("\", ", file);
}

bool WriteJson(const char *path)
{
    FILE *file = fopen(path, "w");
    if (!file)
        return false;
    fputs("[\n", file);
    const char *separator = "";
    for (const CBenchRow &row : BenchRows()) {
        fprintf(file, "%s  {", separator);
        WriteJsonText(file, "group", row.group);
        WriteJsonText(file, "name", row.name);
        WriteJsonText(file, "unit", row.unit);
        WriteJsonText(file, "peer_name", row.peerName);
        fprintf(file, "\"ours\": %.3f, \"peer\": %.3f, \"ratio\": %.4f}", row.ours, row.peer,
                row.ratio);
        separator = ",\n";
    }
    fputs("\n]\n", file);
    return fclose(file) == 0;
}

}  // namespace

CBenchGroup::CBenchGroup(const char *name, void (*run)()) : m_name(name), m_run(run)
{
    Groups().push_back(*this);
}

std::vector<CBenchRow> &BenchRows()
{
    static std::vector<CBenchRow> s_rows;
    return s_rows;
}

void BenchAdd(const CBenchRow &row)
{
    BenchRows().push_back(row);
    BenchRows().back().group = s_runningGroup;
    fprintf(stderr, "%s: %.2f\n", row.name, row.ratio);
}

double BenchNow()
{
    static LARGE_INTEGER s_frequency;
    if (s_frequency.QuadPart == 0)
        QueryPerformanceFrequency(&s_frequency);
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return static_cast<double>(now.QuadPart) / static_cast<double>(s_frequency.QuadPart);
}

double BenchMedian(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

int main(int argc, char **argv)
{
    const char *json = nullptr;
    std::vector<const char *> wanted;
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "--json") == 0 && i + 1 < argc)
            json = argv[++i];
        else
            wanted.push_back(argv[i]);
    }
    std::sort(Groups().begin(), Groups().end(), [](const CBenchGroup &a, const CBenchGroup &b) {
        return strcmp(a.m_name, b.m_name) < 0;
    });
    for (const char *const name : wanted) {
        if (std::any_of(Groups().begin(), Groups().end(),
                        [=](const CBenchGroup &group) { return strcmp(name, group.m_name) == 0; }))
            continue;
        fprintf(stderr, "no group %s; there are", name);
        for (const CBenchGroup &group : Groups())
            fprintf(stderr, " %s", group.m_name);
        fputs("\n", stderr);
        return 2;
    }
    for (const CBenchGroup &group : Groups()) {
        const bool bWanted =
            wanted.empty() || std::any_of(wanted.begin(), wanted.end(), [&](const char *name) {
                return strcmp(name, group.m_name) == 0;
            });
        s_runningGroup = group.m_name;
        if (bWanted)
            group.m_run();
    }
    PrintTable();
    if (json && !WriteJson(json)) {
        fprintf(stderr, "cannot write %s\n", json);
        return 1;
    }
    return 0;
}
