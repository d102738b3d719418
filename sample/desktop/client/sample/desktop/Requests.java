package sample.desktop;

import java.io.IOException;
import java.nio.file.ClosedWatchServiceException;
import java.nio.file.DirectoryIteratorException;
import java.nio.file.Files;
import java.nio.file.LinkOption;
import java.nio.file.Path;
import java.nio.file.StandardWatchEventKinds;
import java.nio.file.WatchKey;
import java.nio.file.WatchService;
import java.util.ArrayList;
import java.util.List;
import java.util.Optional;
import java.util.concurrent.TimeUnit;
import java.util.function.Consumer;

import org.eclipse.osgi.service.datalocation.Location;

/**
 * How others reach the running client: each puts a file into a folder of the workspace, named for what is asked
 * ("raise.1234"), and the client takes it away. Unlike a socket's, a file's path may be as long as a workspace's is.
 */
final class Requests {
    static final String RAISE = "raise";

    /** What becomes of a request. */
    enum Fate {
        TAKEN,
        /** The client that was asked has ended. */
        LOST,
        /** It is there and does not answer. */
        UNANSWERED
    }

    /** A client that is only starting, or closing, answers nobody for a while. */
    private static final long PATIENCE_SECONDS = Long.getLong("sample.desktop.patience", 180);
    private static final long STEP_MILLISECONDS = 50;

    private final Path folder;

    Requests(Location workspace) throws IOException {
        // Platform locations are URLs whose paths are not escaped.
        folder = Files.createDirectories(Path.of(workspace.getURL().getPath(), ".requests"));
    }

    /** Waits until the client, which is {@code process}, takes the request, has ended, or has had its time. */
    Fate send(String what, Optional<ProcessHandle> process) throws IOException, InterruptedException {
        Path request = Files.createTempFile(folder, what + ".", "");
        try {
            long end = System.nanoTime() + TimeUnit.SECONDS.toNanos(PATIENCE_SECONDS);
            boolean isThere = true;
            while (isThere && System.nanoTime() < end) {
                isThere = process.map(ProcessHandle::isAlive).orElse(false); // before the look: nothing comes after it
                if (Files.notExists(request)) {
                    return Fate.TAKEN;
                }
                Thread.sleep(STEP_MILLISECONDS);
            }
            return isThere ? Fate.UNANSWERED : Fate.LOST;
        } finally {
            Files.deleteIfExists(request);
        }
    }

    /** Hands every request from now on to {@code answer}, until what is returned is closed. */
    AutoCloseable listen(Consumer<String> answer) throws IOException {
        WatchService watch = folder.getFileSystem().newWatchService();
        folder.register(watch, StandardWatchEventKinds.ENTRY_CREATE);
        take(); // nobody was there to hear them; who asks for the window gets it now
        Thread thread = new Thread(() -> answer(watch, answer), "requests");
        thread.setDaemon(true);
        thread.start();
        return watch;
    }

    private void answer(WatchService watch, Consumer<String> answer) {
        try {
            for (WatchKey key = watch.take(); ; key = watch.take()) {
                key.pollEvents();
                take().forEach(answer);
                key.reset();
            }
        } catch (InterruptedException | ClosedWatchServiceException end) {
            // The client ends.
        } catch (IOException failure) {
            failure.printStackTrace();
        }
    }

    /** Takes away what is a request; what else somebody has in the folder is left alone. */
    private List<String> take() throws IOException {
        List<String> taken = new ArrayList<>();
        try (var files = Files.newDirectoryStream(folder)) {
            for (Path file : files) {
                String name = file.getFileName().toString().replaceFirst("\\..*", "");
                if (isKnown(name) && Files.isRegularFile(file, LinkOption.NOFOLLOW_LINKS) && remove(file)) {
                    taken.add(name);
                }
            }
        } catch (DirectoryIteratorException failure) {
            throw failure.getCause();
        }
        return taken;
    }

    private static boolean isKnown(String name) {
        return name.equals(RAISE) || Commands.MENU.containsKey(name);
    }

    /** One that cannot be taken away is not answered either, and hinders no other. */
    private static boolean remove(Path request) {
        try {
            return Files.deleteIfExists(request);
        } catch (IOException failure) {
            failure.printStackTrace();
            return false;
        }
    }
}
