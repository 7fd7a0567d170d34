package ui.frmwork.plaz.browser;

import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.image.BufferedImage;
import java.io.Reader;
import java.io.StringReader;
import java.lang.reflect.Method;
import java.net.URI;
import java.nio.charset.StandardCharsets;
import java.util.HashSet;
import java.util.Optional;
import java.util.Set;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.FutureTask;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.TimeoutException;
import java.util.regex.Pattern;
import javax.xml.stream.XMLInputFactory;
import javax.xml.stream.XMLStreamConstants;
import javax.xml.stream.XMLStreamException;
import javax.xml.stream.XMLStreamReader;

/**
 * Pictures in SVG, where the library that draws them is among the classes. They come from stores that may mean harm, so
 * only plain drawings reach it: no entities, scripts, animations, pictures in pictures or copies of parts, nothing that
 * leads elsewhere or back to what contains it, not too much of anything; and it has little time.
 */
final class Drawing {
    private static final int MOST_BYTES = 256 << 10;
    private static final int MOST_ELEMENTS = 5000;
    private static final int MOST_DEPTH = 50;
    private static final int SECONDS = 3;
    private static final Set<String> ELEMENTS = Set.of("svg", "g", "defs", "title", "desc", "path", "rect", "circle",
            "ellipse", "line", "polyline", "polygon", "text", "tspan", "linearGradient", "radialGradient", "stop");
    /** Dashes may be so small that there are millions of them. */
    private static final Pattern REFUSED = Pattern.compile("dash|url\\s*\\(\\s*[^#\\s]|\\\\", Pattern.CASE_INSENSITIVE);
    private static final Optional<Class<?>> UNIVERSE = find("com.kitfox.svg.SVGUniverse");

    /** One that took too long is still at it: there are no more, then. */
    private static boolean isStuck;

    private Drawing() {}

    /** @return none where it may not or cannot be drawn */
    static synchronized Optional<BufferedImage> draw(byte[] file, int pixels) {
        if (UNIVERSE.isEmpty() || isStuck || file.length > MOST_BYTES) return Optional.empty();
        String text = new String(file, StandardCharsets.UTF_8); // whatever encoding it names: looked at and drawn alike
        if (!isHarmless(text)) return Optional.empty();
        FutureTask<BufferedImage> task = new FutureTask<>(() -> render(text, pixels));
        Thread thread = new Thread(task, "drawing");
        thread.setDaemon(true);
        thread.start();
        try {
            return Optional.of(task.get(SECONDS, TimeUnit.SECONDS));
        } catch (TimeoutException e) {
            isStuck = true;
        } catch (InterruptedException | ExecutionException e) {
            // a tile stands in its place
        }
        return Optional.empty();
    }

    private static Optional<Class<?>> find(String name) {
        try {
            return Optional.of(Class.forName(name));
        } catch (ClassNotFoundException e) {
            return Optional.empty();
        }
    }

    static boolean isHarmless(String text) {
        XMLInputFactory factory = XMLInputFactory.newDefaultFactory();
        factory.setProperty(XMLInputFactory.SUPPORT_DTD, false);
        factory.setProperty(XMLInputFactory.IS_SUPPORTING_EXTERNAL_ENTITIES, false);
        try {
            XMLStreamReader reader = factory.createXMLStreamReader(new StringReader(text));
            Set<String> names = new HashSet<>();
            int elements = 0;
            int depth = 0;
            while (reader.hasNext()) {
                switch (reader.next()) {
                    case XMLStreamConstants.DTD, XMLStreamConstants.ENTITY_REFERENCE,
                            XMLStreamConstants.PROCESSING_INSTRUCTION -> {
                        return false;
                    }
                    case XMLStreamConstants.START_ELEMENT -> {
                        if (++elements > MOST_ELEMENTS || ++depth > MOST_DEPTH || !isHarmless(reader, names))
                            return false;
                    }
                    case XMLStreamConstants.END_ELEMENT -> --depth;
                    default -> {
                        // texts and comments
                    }
                }
            }
            return true;
        } catch (XMLStreamException e) {
            return false;
        }
    }

    /** @param names of the elements before, once each: what refers to these alone cannot go in a circle */
    private static boolean isHarmless(XMLStreamReader element, Set<String> names) {
        if (!ELEMENTS.contains(element.getLocalName())) return false;
        String name = "";
        for (int i = 0; i < element.getAttributeCount(); ++i) {
            String attribute = element.getAttributeLocalName(i);
            String value = element.getAttributeValue(i).strip();
            if (attribute.startsWith("on") || attribute.equals("base") || REFUSED.matcher(attribute + " " + value).find()) return false;
            if (attribute.equals("href") && !(value.startsWith("#") && names.contains(value.substring(1)))) return false;
            if (attribute.equals("id")) name = value;
        }
        return name.isEmpty() || names.add(name);
    }

    /** By reflection, since the window works without the library as well. */
    private static BufferedImage render(String text, int pixels) throws ReflectiveOperationException {
        Object universe = UNIVERSE.orElseThrow().getConstructor().newInstance();
        Object uri = call(universe, "loadSVG", new Class<?>[] {Reader.class, String.class},
                new StringReader(text), "logo");
        Object diagram = call(universe, "getDiagram", new Class<?>[] {URI.class}, uri);
        call(diagram, "setIgnoringClipHeuristic", new Class<?>[] {boolean.class}, true);
        double width = (Float) call(diagram, "getWidth", new Class<?>[0]);
        double height = (Float) call(diagram, "getHeight", new Class<?>[0]);
        BufferedImage image = new BufferedImage(pixels, pixels, BufferedImage.TYPE_INT_ARGB);
        Graphics2D g = image.createGraphics();
        g.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
        double scale = pixels / Math.max(width, height);
        g.translate((pixels - width * scale) / 2, (pixels - height * scale) / 2);
        g.scale(scale, scale);
        call(diagram, "render", new Class<?>[] {Graphics2D.class}, g);
        g.dispose();
        return image;
    }

    private static Object call(Object object, String name, Class<?>[] types, Object... arguments)
            throws ReflectiveOperationException {
        Method method = object.getClass().getMethod(name, types);
        return method.invoke(object, arguments);
    }
}
