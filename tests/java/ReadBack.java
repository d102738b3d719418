import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Properties;

/** Prints every entry of a property file: key and value, each character as four hexadecimal digits. */
public final class ReadBack {
    private ReadBack() {}

    private static void append(StringBuilder out, String text) {
        for (char character : text.toCharArray()) {
            out.append(String.format("%04x", (int) character));
        }
    }

    public static void main(String[] arguments) throws IOException {
        Properties properties = new Properties();
        try (InputStream file = Files.newInputStream(Path.of(arguments[0]))) {
            properties.load(file);
        }
        StringBuilder out = new StringBuilder();
        for (String key : properties.stringPropertyNames()) {
            append(out, key);
            out.append('=');
            append(out, properties.getProperty(key));
            out.append('\n');
        }
        System.out.print(out);
    }
}
