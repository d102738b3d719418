/** A program that is nothing but its first line: what it takes until it is printed is the start. */
public final class Main {
    public static void main(String[] arguments) {
        System.out.println("started");
    }

    /** The Eclipse launcher library's way in. */
    public int run(String[] arguments) {
        main(arguments);
        return 0;
    }
}
