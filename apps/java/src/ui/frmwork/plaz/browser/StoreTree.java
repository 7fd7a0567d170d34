package ui.frmwork.plaz.browser;

import java.awt.Rectangle;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import javax.swing.JTree;
import javax.swing.tree.DefaultMutableTreeNode;
import javax.swing.tree.DefaultTreeCellRenderer;
import javax.swing.tree.DefaultTreeModel;
import javax.swing.tree.TreeNode;
import javax.swing.tree.TreePath;
import javax.swing.tree.TreeSelectionModel;
import ui.frmwork.plaz.browser.Snapshot.Category;
import ui.frmwork.plaz.browser.Snapshot.Store;

/** The stores and their categories. Something is always chosen. */
final class StoreTree extends JTree {
    private static final long serialVersionUID = 1;

    private record Place(Scope scope, String text) {
        @Override
        public String toString() {
            return text;
        }
    }

    StoreTree() {
        super(node(Scope.ALL, "All stores"));
        getSelectionModel().setSelectionMode(TreeSelectionModel.SINGLE_TREE_SELECTION);
        setTransferHandler(null); // what it copies would be read as HTML by others
        getAccessibleContext().setAccessibleName("Stores and categories");
        setSelectionRow(0);
    }

    @Override
    public void updateUI() {
        super.updateUI();
        DefaultTreeCellRenderer renderer = Look.plain(new DefaultTreeCellRenderer());
        renderer.setLeafIcon(null);
        renderer.setOpenIcon(null);
        renderer.setClosedIcon(null);
        setCellRenderer(renderer);
        setRowHeight(Look.lineHeight(this) + Look.gap(this));
    }

    /** Only up or down: the beginnings of names stay in sight. */
    @Override
    public void scrollRectToVisible(Rectangle place) {
        super.scrollRectToVisible(new Rectangle(0, place.y, 1, place.height));
    }

    Scope chosen() {
        TreePath path = getSelectionPath();
        return path == null ? Scope.ALL : scope(path);
    }

    void show(List<Store> stores) {
        Scope chosen = chosen();
        List<Scope> closed = closedPlaces();
        DefaultMutableTreeNode root = node(Scope.ALL, "All stores");
        for (Store store : stores) root.add(storeNode(store));
        ((DefaultTreeModel) getModel()).setRoot(root);
        for (TreePath path : paths(root))
            if (closed.stream().noneMatch(scope(path)::isPlaceOf)) expandPath(path);
        if (!choose(chosen)) choose(Scope.ALL);
    }

    /** @return whether there is such a place */
    boolean choose(Scope scope) {
        for (TreePath path : paths((TreeNode) getModel().getRoot())) {
            if (!scope(path).isPlaceOf(scope)) continue;
            setSelectionPath(path);
            scrollPathToVisible(path);
            return true;
        }
        return false;
    }

    private List<Scope> closedPlaces() {
        return paths((TreeNode) getModel().getRoot())
                .stream()
                .filter(path -> !getModel().isLeaf(path.getLastPathComponent()) && !isExpanded(path))
                .map(StoreTree::scope)
                .toList();
    }

    private static DefaultMutableTreeNode storeNode(Store store) {
        Scope scope = Scope.of(store.name());
        DefaultMutableTreeNode node = node(scope, title(store));
        addCategories(node, scope, store.categories());
        return node;
    }

    private static String title(Store store) {
        String count = store.title() + " (" + store.items().size();
        return count + (store.isListed() ? ")" : ", no longer offered)");
    }

    private static void addCategories(DefaultMutableTreeNode node, Scope scope, List<Category> categories) {
        for (Category category : categories) {
            Scope below = scope.below(category);
            DefaultMutableTreeNode child = node(below, category.title());
            addCategories(child, below, category.below());
            node.add(child);
        }
    }

    private static DefaultMutableTreeNode node(Scope scope, String text) {
        return new DefaultMutableTreeNode(new Place(scope, text));
    }

    private static Scope scope(TreePath path) {
        return ((Place) ((DefaultMutableTreeNode) path.getLastPathComponent()).getUserObject()).scope();
    }

    private static List<TreePath> paths(TreeNode root) {
        List<TreePath> paths = new ArrayList<>();
        addPaths(new TreePath(root), paths);
        return paths;
    }

    private static void addPaths(TreePath path, List<TreePath> paths) {
        paths.add(path);
        for (Object child : Collections.list(((TreeNode) path.getLastPathComponent()).children()))
            addPaths(path.pathByAddingChild(child), paths);
    }
}
