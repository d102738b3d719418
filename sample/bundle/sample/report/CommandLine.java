package sample.report;

import java.util.Arrays;
import java.util.List;

/** The options that reach the platform behind the launcher's own ones. */
public final class CommandLine {
    private CommandLine() {}

    /**
     * The argument that follows the last {@code option}, or null. The last one counts: a
     * provisioning launch appends its "-application" behind the one of a normal launch.
     */
    public static String last(String[] commandLine, String option) {
        List<String> arguments = Arrays.asList(commandLine);
        int index = arguments.lastIndexOf(option);
        return index >= 0 && index + 1 < arguments.size() ? arguments.get(index + 1) : null;
    }
}
