import java.awt.Color;
import java.awt.GradientPaint;
import java.awt.Graphics2D;
import java.awt.Polygon;
import java.awt.RenderingHints;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.nio.file.Path;
import javax.imageio.ImageIO;

/** Draws the splash screen of the desktop sample: Splash FILE. Without text, since there may be no font. */
public final class Splash {
    private static final int WIDTH = 480;
    private static final int HEIGHT = 300;

    private Splash() {}

    public static void main(String[] arguments) throws IOException {
        BufferedImage image = new BufferedImage(WIDTH, HEIGHT, BufferedImage.TYPE_INT_RGB);
        Graphics2D pen = image.createGraphics();
        pen.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
        pen.setPaint(new GradientPaint(0, 0, new Color(0x16324F), WIDTH, HEIGHT, new Color(0x2A628F)));
        pen.fillRect(0, 0, WIDTH, HEIGHT);
        pen.setColor(new Color(0x3E92CC));
        pen.fillOval(150, 30, 180, 180);
        pen.setColor(Color.WHITE);
        pen.fillPolygon(new Polygon(new int[] {215, 215, 285}, new int[] {80, 160, 120}, 3));
        pen.dispose();
        ImageIO.write(image, "bmp", Path.of(arguments[0]).toFile());
    }
}
