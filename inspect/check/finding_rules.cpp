#include "inspect/check/finding.h"

namespace rcp::inspect {
namespace {

constexpr Level kWarning = Level::kWarning;
constexpr Level kError = Level::kError;

constexpr FindingRule kRules[] = {
    // Lines
    {"RI101", "carriage-return", kWarning,
     "Lines of the file end in carriage return and line feed.",
     "Write the file with line feeds alone."},
    {"RI102", "continuation-lost", kError,
     "A carriage return stands behind the backslash that was to continue the line, so the entry "
     "ends "
     "there.",
     "Write the file with line feeds alone."},
    {"RI103", "byte-order-mark", kWarning, "The file begins with a byte-order mark.",
     "Save the file as UTF-8 without byte-order mark."},
    {"RI104", "not-utf-8", kError, "A line is not UTF-8. The launcher leaves the whole line out.",
     "Save the file as UTF-8, or write the character as \\uXXXX."},
    {"RI105", "line-too-long", kError,
     "A line has more bytes than the launcher reads at once; the rest is an entry of its own.",
     "Break the line with a backslash at its end."},
    {"RI106", "continuation-at-end", kError,
     "The file ends inside a continued entry. The entry is lost.",
     "Take the backslash at the end of the last line out."},
    {"RI107", "nul-escape", kError,
     "\"\\u\" without hexadecimal digits, or with four zeros, is a NUL. It ends the value.",
     "Write \"/\" for a backslash in a path, and leave \"\\u0000\" out."},
    {"RI108", "nul-byte", kError, "A line holds a NUL byte. The rest of the line is lost.",
     "Remove the byte; the file may have been saved as UTF-16."},
    {"RI109", "separator-lost", kWarning,
     "A continuation line begins with \"=\" or \":\". It is taken for a separator and lost.",
     "Break the line at another place."},
    {"RI110", "swallowed-entry", kWarning,
     "The line in front ends in a backslash, so this line, which looks like an entry, is part of "
     "its "
     "value.",
     "Take the backslash at the end of the line in front out, or double it."},
    {"RI111", "lost-backslash", kWarning, "A backslash that begins no escape goes away.",
     "Write \"/\" in paths, or two backslashes for one."},
    // Keys
    {"RI201", "missing-key", kError, "A key is missing that every launch needs.", "Add the key."},
    {"RI202", "unread-key", kWarning, "Nothing looks at the key.",
     "Correct its name, or take the entry out.", "keys that nothing reads"},
    {"RI203", "wrong-file", kWarning, "The key counts, but not in this file.",
     "Move the entry to the file named.", "keys of other files"},
    {"RI204", "duplicate-key", kWarning, "The key stands in the file twice.",
     "Keep the entry that is meant.", "keys that stand there twice"},
    {"RI205", "empty-key", kWarning, "The entry has no key.",
     "Write the key in front of the separator, or take the entry out."},
    {"RI206", "hidden-entry", kError,
     "An entry without key stands in front. The search for keys of this kind ends there, so this "
     "one "
     "is never found.",
     "Correct the entry without key."},
    {"RI207", "overridden-entry", kWarning,
     "A file that is read earlier holds the same key and always wins.", "Keep one of the two."},
    {"RI208", "master-overrides", kWarning,
     "The launcher appends this key to the user's copy of the file; the entry here comes first and "
     "wins, so what the launcher knows never counts.",
     "Take the entry out of the master copy."},
    {"RI209", "other-system", kWarning,
     "The key is qualified for a system that the launcher never calls itself, and there is no "
     "entry "
     "without the qualifier or with \"macosx\". No user gets it.",
     "Write the key with \"macosx\" or without qualifier."},
    {"RI210", "qualifier-not-read", kWarning,
     "Keys are qualified for a system in the master rcpinstall.properties only.",
     "Write the key without qualifier."},
    // Values
    {"RI301", "unresolved-placeholder", kError,
     "A placeholder names no property, or is of no known kind. The launch ends there.",
     "Correct the name or add the property."},
    {"RI302", "environment-placeholder", kWarning,
     "A placeholder names a variable that is not set here and has no default. Where it is not set "
     "the "
     "launch ends.",
     "Add a default: ${env.NAME,default}."},
    {"RI303", "endless-placeholder", kError,
     "A placeholder brings itself back, by way of others or at once. The launch ends there.",
     "Break the circle of the properties named."},
    {"RI304", "unclosed-placeholder", kError,
     "\"${\" without \"}\" behind it. Nothing of the value is replaced.",
     "Close the placeholder, or write \"$\" and \"{\" apart."},
    {"RI305", "unexpanded-placeholder", kWarning,
     "The launcher does not replace this placeholder in this value.",
     "Write the value out, or give it in a \"vmarg.\" entry, where every placeholder counts."},
    {"RI306", "percent", kWarning,
     "\"%%\" becomes \"%\" when the value is copied into the user's rcpinstall.properties.",
     "Avoid \"%%\" in this value."},
    {"RI307", "percent-variable", kWarning, "%NAME% is no placeholder of the launcher's.",
     "Write ${env.NAME}, where placeholders count."},
    {"RI308", "several-arguments", kWarning,
     "The value holds several arguments. It is passed on as one, blanks included.",
     "Give every argument an entry of its own."},
    {"RI309", "early-separator", kWarning,
     "A blank, tab or \":\" in front of \"=\" ends the key already; the rest is the value.",
     "Choose a key without these characters; a backslash in front of them does not help."},
    {"RI310", "trailing-tab", kWarning, "A tab at the end of a value stays part of it.",
     "Take the tab out."},
    {"RI311", "unknown-configuration", kError,
     "install.configuration has a value that the launcher does not know. The launch ends there.",
     "Use one of the names in docs/configuration.md; case counts."},
    {"RI312", "ignored-value", kWarning, "The value is none of those that are asked for.",
     "Use the value named; case counts."},
    {"RI313", "relative-path", kWarning,
     "The path is relative: it depends on the folder in which the user starts the launcher.",
     "Begin the path with \"/\" or ${rcp.home}."},
    // JVM arguments
    {"RI401", "heap-start-over-limit", kError,
     "The heap starts larger than its limit. The JVM refuses to start.", "Correct the sizes."},
    {"RI402", "two-collectors", kError,
     "Two garbage collectors are chosen. The JVM refuses to start.", "Choose one."},
    {"RI403", "repeated-option", kWarning,
     "A JVM option is given twice with different values; the last one wins.",
     "Give both the same \"vmarg.\" name, or take one out."},
    {"RI404", "no-option", kError,
     "A JVM argument does not begin with \"-\". The JVM takes it for something else or refuses it.",
     "Write the whole option: vmarg.NAME=-OPTION."},
    {"RI405", "overridden-vmarg", kWarning,
     "A file that is read earlier holds a \"vmarg.\" entry of this name and always wins.",
     "Keep one of the two, or give this one another name."},
    // Configuration extensions
    {"RI501", "extension-gap", kError,
     "The numbers of a configuration extension have a gap. What stands behind it is never used, "
     "and "
     "for \"initial\" the launch ends.",
     "Number the entries from 1 without a gap."},
    {"RI502", "initial-without-completion", kError,
     "The initial configuration does not name the property that tells that it is complete. The "
     "launch "
     "ends there.",
     "Add -initialCompleteFlag and behind it, as the next number, the property's name."},
    {"RI503", "refused-argument", kError, "The launcher refuses to start with this argument.",
     "Take out what the message names."},
    {"RI504", "unknown-extension", kError,
     "\"-config\" names an extension of which there is no entry. It adds nothing to the launch.",
     "Correct the name, or add the entries."},
    {"RI505", "launch-ends", kError,
     "Rehearsed as this user and in this environment, a launch with these arguments ends with this "
     "record.",
     "rcpinspect explain tells how far it comes, and docs/messages.md what the record means."},
    {"RI506", "not-rehearsed", kWarning,
     "A launch could not be rehearsed, so that of how it ends and of what it writes nothing is "
     "known.",
     "Mend what keeps it from being rehearsed, such as the folder in TMPDIR."},
    // Files
    {"RI601", "missing-file", kError, "A file that a launch needs is missing or cannot be read.",
     "Add the file, or correct the path."},
    {"RI602", "not-executable", kError, "A program that a launch needs is not executable.",
     "Set its permission to execute: chmod 755."},
    {"RI603", "base-not-recognised", kError,
     "The platform's program is a script, and its path lacks what the launcher looks for to "
     "recognise "
     "a running platform. A second launch would not find the first.",
     "Name the folder so that its path holds \"rcp.base\"."},
    {"RI605", "debug-marker", kError,
     "The debug marker file is there. Every launch waits until it is removed.",
     "Remove the file before shipping."},
    {"RI606", "no-platform-xml", kWarning,
     "There is no master copy of platform.xml. Every launch records an error until there is one.",
     "Add the file, or set update.policy.managed=false."},
    {"RI607", "stale-copy", kWarning,
     "The user's copy of a master file was made from another version of it. A launch makes the "
     "copy "
     "once, so the user keeps the former entry.",
     "Start once with -resetconfig, or change the user's copy."},
    {"RI608", "incomplete-copy", kWarning,
     "A file of the user's is not whole: what made it was interrupted.",
     "Start once with -resetconfig, or remove the file."},
    {"RI609", "no-room", kError,
     "A launch writes more than there is room for, on the disk or within the user's quota.",
     "Make room there, or name another workspace with -data."},
    {"RI610", "passed-over", kWarning,
     "The file cannot be opened. Launches pass over it as if it were not there.",
     "Let it be a file that everybody can read."},
    // Application bundles
    {"RI701", "bundle-incomplete", kError,
     "The application bundle lacks something without which it does not start.",
     "Lay the bundle out as docs/porting.md shows."},
    {"RI702", "bundle-key", kError,
     "A key of the bundle's Info.plist is missing or names something else than the bundle holds.",
     "Correct the key that the message names."},
    {"RI703", "code-damaged", kError,
     "A program or library of the bundle cannot be read as one of macOS.",
     "Build or copy the file again."},
    {"RI704", "processor-missing", kError,
     "The launcher loads the platform's library and the JVM into its own process, so they need "
     "code for the processor as which it runs.",
     "Add the code, or set LSArchitecturePriority in Info.plist to the processor that all have."},
    {"RI705", "newer-system", kWarning,
     "The code wants a newer system than the bundle promises. On the older ones it cannot be "
     "loaded.",
     "Build it for the older system, or raise LSMinimumSystemVersion."},
    {"RI706", "library-not-found", kError,
     "A library or search path leads neither into the bundle nor to a library of the system.",
     "Put the library into the bundle, or correct the name with install_name_tool."},
    {"RI707", "restart-path", kWarning,
     "rcplauncher.plist names no executable of the bundle. A restart starts what it names, or the "
     "launcher when that cannot be started.",
     "Name the launcher's path in the bundle's final place."},
    {"RI708", "not-signed", kWarning,
     "Code without signature is not started after a download, and on arm64 never.",
     "Sign when everything is in the bundle, from the inside out: libraries first, the bundle "
     "last."},
    {"RI709", "launch-breaks-seal", kWarning,
     "A launch writes into the bundle what its signature seals. From then on the signature is "
     "broken.",
     "Write the value before the bundle is signed, or keep the file outside of the bundle."},
    {"RI710", "script-loses-variables", kWarning,
     "The system starts the interpreter of this script without the variables whose names begin "
     "with DYLD_.",
     "Use a program instead of the script."},
    {"RI711", "entitlement-missing", kWarning,
     "The launcher is signed for the hardened runtime without an entitlement that a JVM in its "
     "process needs.",
     "Sign it with packaging/macos/entitlements.plist."},
    {"RI712", "stranger-among-code", kWarning,
     "Everything in Contents/MacOS has to be signed as code. A file that is none ends the signing "
     "of the bundle.",
     "Put the file into Contents/Resources and a link to it into Contents/MacOS."},
    // The hand-off
    {"RI801", "not-startable", kError,
     "The launcher or a program that it hands off to cannot be started here.",
     "Install the program that is made for this machine, with the libraries that it needs."},
    {"RI802", "not-loadable", kError,
     "A library that the platform is started with cannot be loaded.",
     "Install the library that is made for this machine, with those that it needs."},
    {"RI803", "damaged-jar", kError,
     "A jar is no zip file or has no manifest, or a folder in its place cannot be it.",
     "Copy it again."},
    {"RI804", "missing-class", kError, "The class that is started is in no jar that is named.",
     "Name the jar of the platform's launcher, or its framework."},
    {"RI805", "missing-bundle", kError,
     "The platform's configuration names a jar or a list that is not there.",
     "Add the file, or correct the entry."},
    {"RI806", "start-level", kWarning,
     "A start level is no number from 1 on, or beyond the last level: the bundle is not started.",
     "Correct the start level."},
    {"RI807", "area-elsewhere", kError, "An area of the platform's is where there is no folder.",
     "Correct the path."},
    {"RI808", "search-folder-missing", kWarning,
     "A folder that a search path for libraries names is not there.",
     "Correct the path, or take the folder out of it."},
    {"RI809", "jvm-variable", kWarning,
     "The JVM takes options from this variable that no property file names.",
     "Unset the variable unless it is meant."},
    {"RI810", "jvm-refuses", kError,
     "The JVM was tried (--try-jvm) and does not start with the options of the launch.",
     "Correct what it complains about."},
    {"RI811", "malformed-settings", kError,
     "The platform refuses its configuration for an entry that is not well-formed.",
     "Write \"/\" for a backslash in a path, or two backslashes for one."},
    {"RI812", "no-bundles", kError,
     "The platform's configuration names no bundles, so there is no application to start.",
     "Name them in osgi.bundles; where it is a copy that has lost them, start once with "
     "-resetconfig."},
    {"RI813", "too-large", kWarning,
     "A file is larger than any that was written for this purpose. Only its beginning is examined.",
     "See what has filled it, and copy it again."},
    {"RI814", "path-not-expressible", kError,
     "The locale that the JVM gets cannot express a path: the platform looks for another one.",
     "Start with a locale of UTF-8, such as LC_ALL=C.UTF-8."},
    {"RI815", "jvm-not-tried", kWarning, "The JVM was to be tried (--try-jvm), and could not be.",
     "Mend what keeps it from being tried."},
    {"RI816", "other-main-class", kWarning,
     "The startup jar's manifest names another class than the platform's launcher. That one is "
     "started, and what it does is not known here.",
     "Let the manifest name org.eclipse.equinox.launcher.Main, unless it is meant."},
    {"RI817", "first-thread-refused", kWarning,
     "The JVM is started as a program, which outside macOS refuses -XstartOnFirstThread. Its "
     "library passes over that option.",
     "Name the JVM's library (lib/server/libjvm.so) instead, or see with --try-jvm that it "
     "starts."},
};

}  // namespace

std::span<const FindingRule> findingRules() {
    return kRules;
}

}  // namespace rcp::inspect
