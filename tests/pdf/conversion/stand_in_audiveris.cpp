// Stands in for Audiveris in tests: checks its arguments to the letter, then does what it is told.
//
// QV_STAND_IN holds words, separated by blanks; without one, each input gets a result beside the others:
//   folders    a folder for each result, as Audiveris does before its version 5.4
//   movements  two results for each input, NAME.mvt1.mxl and NAME.mvt2.mxl
//   odd-names  results that bear no input's name
//   last-only  a result for the last input alone
//   nothing    status 0 without a result, as Audiveris does before its version 5.10 when it fails
//   empty      results of no bytes
//   shifts     octave shifts in the results
//   no-notes   measures without a note, as the engine makes of tablature alone
//   guitar     a guitar's study as the engine writes it: a part called a voice with a choir's program, no key for no
//              accidentals, no octave under the clef, its subtitle as the movement's title, two voices with a gap
//   steps      the lines in which the engine tells its steps, before anything else
//   large      its refusal of a large image, then status 1
//   memory     its running out of memory, then status 1
//   slow       its giving up on a step that takes too long, then status 1
//   odd-xml    results that are no MusicXML
//   broken-xml results that are no XML
//   loud       four megabytes on each stream
//   fail       ten lines of output among empty ones, then status 1
//   mute       status 3 without a word
//   latin1     output that is not UTF-8, then status 1
//   crash      ends by a signal
//   hang       starts a process that ignores being asked to end, and waits for ever with it
// QV_STAND_IN_MEASURES holds the number of measures of each result, separated by commas (4 where it ends).
// QV_STAND_IN_SCORE names a MusicXML file, whose text every result has instead.
// QV_STAND_IN_REPORT names a file that gets the inputs, a line each, and with "hang" the two process numbers.

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>
#include <zip.h>

namespace fs = std::filesystem;

namespace {

std::string setting(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

bool told(const std::string &word)
{
    return (' ' + setting("QV_STAND_IN") + ' ').find(' ' + word + ' ') != std::string::npos;
}

[[noreturn]] void refuse(const std::string &reason)
{
    std::printf("%s\n", reason.c_str());
    std::exit(64);
}

/// The inputs, once everything before them is as it has to be.
std::vector<std::string> checkedInputs(const std::vector<std::string> &arguments)
{
    const std::vector<std::string> expected{ "-batch", "-export", "-output", "", "-constant",
        "org.audiveris.omr.step.LoadStep.maxPixelCount=40000000", "--" };
    if (arguments.size() <= expected.size())
        refuse("too few arguments");
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (i != 3 && arguments[i] != expected[i])
            refuse("argument " + std::to_string(i + 1) + " is " + arguments[i]);
    }
    if (!fs::is_directory(arguments[3]))
        refuse("no folder " + arguments[3]);
    std::vector<std::string> inputs(arguments.begin() + std::ptrdiff_t(expected.size()), arguments.end());
    for (const std::string &input : inputs) {
        std::ifstream file(input, std::ios::binary);
        std::string start(4, ' ');
        file.read(start.data(), 4);
        if (start != "%PDF" && start != "\x89PNG")
            refuse("neither a PDF nor a PNG: " + input);
    }
    return inputs;
}

void report(const std::string &line)
{
    if (const std::string path = setting("QV_STAND_IN_REPORT"); !path.empty())
        std::ofstream(path, std::ios::app) << line << '\n';
}

std::string scoreNote(const std::string &step, int octave, int duration)
{
    return "<note><pitch><step>" + step + "</step><octave>" + std::to_string(octave) + "</octave></pitch><duration>"
        + std::to_string(duration) + "</duration>";
}

/// What the engine's version 5.11 was seen to write of a part of one staff.
std::string guitarScore(int measures)
{
    std::ostringstream xml;
    xml << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE score-partwise PUBLIC \"-//Recordare//DTD MusicXML 4.0.3 Partwise//EN\" "
           "\"http://www.musicxml.org/dtds/partwise.dtd\">\n"
           "<score-partwise version=\"4.0.3\"><movement-title>Study</movement-title><identification><encoding>"
           "<software>Audiveris 5.11.0</software><software>ProxyMusic 4.0.3</software></encoding></identification>"
           "<part-list><score-part id=\"P1\"><part-name>Voice</part-name><part-abbreviation>Voice</part-abbreviation>"
           "<score-instrument id=\"P1-I1\"><instrument-name>Voice Oohs</instrument-name></score-instrument>"
           "<midi-instrument id=\"P1-I1\"><midi-channel>1</midi-channel><midi-program>54</midi-program>"
           "<volume>78</volume></midi-instrument></score-part></part-list><part id=\"P1\">";
    for (int number = 1; number <= measures; ++number) {
        xml << "<measure number=\"" << number << "\">";
        if (number == 1) {
            xml << "<attributes><divisions>2</divisions><time><beats>4</beats><beat-type>4</beat-type></time><clef>"
                   "<sign>G</sign><line>2</line></clef><staff-details print-object=\"yes\"></staff-details>"
                   "</attributes>";
        }
        for (const char *step : { "A", "C", "E", "A" })
            xml << scoreNote(step, *step == 'A' ? 4 : 5, 2) << "<voice>1</voice><type>quarter</type></note>";
        // The second voice begins with its second half; what is before is no rest.
        xml << "<backup><duration>8</duration></backup><forward><duration>4</duration><voice>2</voice></forward>"
            << scoreNote("A", 3, 4) << "<voice>2</voice><type>half</type></note></measure>";
    }
    xml << "</part></score-partwise>";
    return xml.str();
}

std::string score(int measures)
{
    if (const std::string path = setting("QV_STAND_IN_SCORE"); !path.empty()) {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }
    if (told("odd-xml"))
        return "<opus/>";
    if (told("broken-xml"))
        return "<score-partwise>";
    if (told("guitar"))
        return guitarScore(measures);
    std::ostringstream xml;
    xml << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE score-partwise PUBLIC \"-//Recordare//DTD MusicXML 4.0 Partwise//EN\" "
           "\"http://www.musicxml.org/dtds/partwise.dtd\">\n"
           "<score-partwise version=\"4.0\"><part-list><score-part id=\"P1\"><part-name>Guitar</part-name></score-part>"
           "</part-list><part id=\"P1\">";
    for (int number = 1; number <= measures; ++number) {
        xml << "<measure number=\"" << number << "\">";
        if (number == 1) {
            xml << "<attributes><divisions>1</divisions><key><fifths>1</fifths></key><time><beats>4</beats><beat-type>4"
                   "</beat-type></time><clef><sign>G</sign><line>2</line></clef></attributes>";
        }
        if (told("shifts"))
            xml << "<direction><direction-type><octave-shift type=\"down\" size=\"8\"/></direction-type></direction>";
        for (const char *step : { "G", "A", "B", "D" }) {
            if (told("no-notes"))
                break;
            xml << "<note><pitch><step>" << step
                << "</step><octave>4</octave></pitch><duration>1</duration><type>quarter"
                   "</type></note>";
        }
        xml << "</measure>";
    }
    xml << "</part></score-partwise>";
    return xml.str();
}

void addMember(zip_t *archive, const char *name, const std::string &bytes)
{
    char *copy = static_cast<char *>(std::malloc(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), copy);
    zip_file_add(archive, name, zip_source_buffer(archive, copy, bytes.size(), 1), ZIP_FL_ENC_UTF_8);
}

void writeResult(const fs::path &path, int measures)
{
    fs::create_directories(path.parent_path());
    if (told("empty")) {
        std::ofstream(path).flush();
        return;
    }
    zip_t *archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    if (!archive)
        refuse("cannot write " + path.string());
    const std::string member = path.stem().string() + ".xml";
    addMember(archive, "META-INF/container.xml",
        "<?xml version=\"1.0\"?><container><rootfiles><rootfile full-path=\"" + member
            + "\"/></rootfiles></container>");
    addMember(archive, member.c_str(), score(measures));
    zip_close(archive);
}

void writeResults(const fs::path &folder, const std::vector<std::string> &inputs)
{
    std::istringstream counts(setting("QV_STAND_IN_MEASURES"));
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        std::string count;
        const int measures = std::getline(counts, count, ',') ? std::stoi(count) : 4;
        if (told("last-only") && i + 1 < inputs.size())
            continue;
        std::string stem = fs::path(inputs[i]).stem().string();
        const fs::path place = told("folders") ? folder / stem : folder;
        if (told("odd-names"))
            stem = "result-" + std::to_string(i);
        if (told("movements")) {
            writeResult(place / (stem + ".mvt1.mxl"), measures);
            writeResult(place / (stem + ".mvt2.mxl"), measures);
        } else {
            writeResult(place / (stem + ".mxl"), measures);
        }
    }
}

void beLoud()
{
    for (int i = 0; i < 65536; ++i) {
        std::fprintf(stdout, "INFO  [song#1] %05d step after step, measure after measure\n", i);
        std::fprintf(stderr, "WARN  [song#1] %05d no time signature, rhythm out of place yes\n", i);
    }
    std::fflush(stdout);
}

void tellSteps(const std::vector<std::string> &inputs)
{
    const std::string book = fs::path(inputs.front()).stem().string();
    for (const char *step : { "LOAD", "BINARY", "SCALE", "GRID", "HEADERS", "STEM_SEEDS", "BEAMS", "LEDGERS", "HEADS" })
        std::printf("INFO  [%s#1]      SheetStub 1234 | %s\n", book.c_str(), step);
    std::fflush(stdout);
}

int giveUp(const char *reason)
{
    std::printf("WARN  [song#1] Error in processing\n%s\n", reason);
    for (int frame = 1; frame <= 8; ++frame)
        std::printf("\tat org.audiveris.omr.step.Frame.number%d(Frame.java:%d)\n", frame, 100 + frame);
    return 1;
}

[[noreturn]] void hang()
{
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGTERM, SIG_IGN);
        for (;;)
            pause();
    }
    report(std::to_string(getpid()) + ' ' + std::to_string(child));
    for (;;)
        pause();
}

} // namespace

int main(int argc, char *argv[])
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const std::vector<std::string> inputs = checkedInputs(arguments);
    for (const std::string &input : inputs)
        report(input);
    if (told("steps"))
        tellSteps(inputs);
    if (told("loud"))
        beLoud();
    if (told("hang"))
        hang();
    if (told("crash")) {
        std::puts("WARN  [song#1] about to crash");
        std::fflush(stdout);
        std::raise(SIGKILL);
    }
    if (told("large"))
        return giveUp("StepException: Too large image: 42,840,000 pixels (vs 40,000,000 max)");
    if (told("memory"))
        return giveUp("java.lang.OutOfMemoryError: Java heap space");
    if (told("slow"))
        return giveUp("java.util.concurrent.TimeoutException: null");
    if (told("mute"))
        return 3;
    if (told("latin1")) {
        std::puts("Zeitma\xdf\nnot understood");
        return 1;
    }
    if (told("fail")) {
        for (int line = 1; line <= 10; ++line) {
            std::fprintf(line % 2 ? stdout : stderr, "line %d\n\n", line);
            std::fflush(stdout);
        }
        return 1;
    }
    if (!told("nothing"))
        writeResults(arguments[3], inputs);
    return 0;
}
