// Random taps, sweeps and keys against a plain model of what is current and selected.
#include "display/GridStage.h"

#include <optional>
#include <random>

namespace zb::test
{
namespace
{
struct Cell
{
    int col;
    int row;
    bool operator==(const Cell &) const = default;
    /// As text is read: along the rows.
    bool isBefore(const Cell &other) const
    {
        return row != other.row ? row < other.row : col < other.col;
    }
    Cell turned() const
    {
        return {row, col};
    }
};

/// A selection is where it began and where it ends.
struct Model
{
    static constexpr int cols = 4;
    static constexpr int rows = 6;
    int fixedCols = 0;
    int fixedRows = 0;
    int mode = 0;
    bool multi = false;
    bool rowSelect = false;
    std::optional<Cell> current;
    std::optional<std::pair<Cell, Cell>> selected;
    bool wholeRows = false;
    Cell anchor{0, 0};

    bool isFixed(const Cell &cell) const
    {
        return cell.col < fixedCols || cell.row < fixedRows;
    }
    static bool isBetween(int value, int one, int other)
    {
        return std::min(one, other) <= value && value <= std::max(one, other);
    }
    static bool isRead(const Cell &cell, Cell one, Cell other)
    {
        if (other.isBefore(one))
        {
            std::swap(one, other);
        }
        return !cell.isBefore(one) && !other.isBefore(cell);
    }
    bool isSelected(const Cell &cell) const
    {
        if (mode == 3 || !selected)
        {
            return false;
        }
        const auto &[from, to] = *selected;
        switch (mode)
        {
        case 1:
            return isRead(cell.turned(), from.turned(), to.turned());
        case 2:
            return isRead(cell, from, to);
        default:
            return isBetween(cell.row, from.row, to.row) &&
                   (wholeRows ? cell.col >= fixedCols : isBetween(cell.col, from.col, to.col));
        }
    }
    void select(const Cell &from, const Cell &to)
    {
        selected = {from, to};
        wholeRows = rowSelect;
        anchor = from;
    }
    /// What the parent hears on the way down and, without a sweep, on the way up.
    std::vector<int> tap(const std::optional<Cell> &cell, bool shift)
    {
        if (!cell)
        {
            current.reset();
            selected.reset();
            return {};
        }
        const bool keeps = mode == 3 || isFixed(*cell) || (!multi && current == cell) || isSelected(*cell);
        if (!keeps)
        {
            const bool grows = multi && shift && selected;
            const int top = grows ? std::min(selected->first.row, selected->second.row) : 0;
            const int bottom = grows ? std::max(selected->first.row, selected->second.row) : 0;
            const bool above = grows && cell->row < top;
            const bool below = grows && cell->row > bottom;
            const Cell to = {cell->col, above ? bottom : below ? top : cell->row};
            select(*cell, to);
            current = cell;
        }
        return !keeps && shift ? std::vector<int>{2047} : std::vector<int>{2047, -114};
    }
    void sweepOver(const std::optional<Cell> &cell)
    {
        if (cell && !isFixed(*cell) && current != cell)
        {
            current = cell;
            if (mode != 3)
            {
                select(anchor, *cell);
            }
        }
    }
    /// Whether the current cell moved.
    bool key(int key)
    {
        const Cell first = {fixedCols, fixedRows};
        const bool back = key == VK_LEFT || key == VK_UP;
        if (!current && back)
        {
            return false;
        }
        Cell to = current.value_or(first);
        if (current)
        {
            to.col += key == VK_RIGHT ? 1 : key == VK_LEFT ? -1 : 0;
            to.row += key == VK_DOWN ? 1 : key == VK_UP ? -1 : 0;
        }
        to.row = key == VK_HOME ? fixedRows : key == VK_END ? rows - 1 : to.row;
        if (to.col < fixedCols || to.row < fixedRows || to.col >= cols || to.row >= rows)
        {
            return false;
        }
        const bool moved = current != to;
        const bool arrow = key != VK_HOME && key != VK_END;
        if (mode != 3 && (moved || !arrow))
        {
            select(to, to);
        }
        current = to;
        return moved;
    }
};

class GridInputModel : public GridTest
{
  protected:
    static POINT at(const std::optional<Cell> &cell)
    {
        return cell ? POINT{cell->col * 50 + 25, cell->row * 15 + 7} : POINT{100, 96};
    }
    std::optional<Cell> anyCell()
    {
        const auto pick = random() % (Model::rows * Model::cols + 2);
        return pick < Model::rows * Model::cols
                   ? std::optional<Cell>({static_cast<int>(pick) % Model::cols, static_cast<int>(pick) / Model::cols})
                   : std::nullopt;
    }
    void tapStep()
    {
        const bool shift = random() % 3 == 0;
        const auto cell = anyCell();
        if (shift)
        {
            keyDown(VK_SHIFT);
        }
        draw({at(cell)});
        keyUp(VK_SHIFT);
        settle();
        EXPECT_EQ(notified, model.tap(cell, shift));
    }
    void sweepStep()
    {
        std::vector<std::optional<Cell>> path = {anyCell()};
        for (int count = 1 + static_cast<int>(random() % 4); count > 0; --count)
        {
            path.push_back(anyCell());
        }
        std::vector<POINT> points;
        for (const auto &cell : path)
        {
            points.push_back(at(cell));
        }
        draw(points);
        std::vector<int> told = model.tap(path.front(), false);
        const bool mayStart = path.front() && model.multi && !model.isFixed(*path.front());
        bool swept = false;
        for (std::size_t i = 1; mayStart && i < path.size(); ++i)
        {
            swept = swept || path[i] != path.front();
            if (swept)
            {
                model.sweepOver(path[i]);
            }
        }
        const auto &end = path.back();
        if (swept && end && !model.isFixed(*end))
        {
            model.current = end;
            if (model.mode != 3)
            {
                model.select(model.anchor, *end);
            }
        }
        if (!told.empty() && !end)
        {
            told.pop_back();
        }
        else if (swept)
        {
            told.back() = -13;
        }
        EXPECT_EQ(notified, told);
    }
    void keyStep()
    {
        constexpr int keys[] = {VK_LEFT, VK_RIGHT, VK_UP, VK_DOWN, VK_LEFT, VK_DOWN, VK_HOME, VK_END};
        const int key = keys[random() % 8];
        log.clear();
        press(key);
        EXPECT_EQ(model.key(key), !log.empty()) << "key " << key;
    }
    void callStep()
    {
        const auto from = anyCell();
        const auto to = anyCell();
        switch (random() % 5)
        {
        case 0:
            if (from && to)
            {
                const bool may = model.mode != 3 && !model.isFixed(*from) && !model.isFixed(*to);
                EXPECT_EQ(grid->SetSelection(static_cast<USHORT>(from->col), static_cast<USHORT>(from->row),
                                             static_cast<USHORT>(to->col), static_cast<USHORT>(to->row)),
                          may);
                if (may)
                {
                    model.select(*from, *to);
                    model.current = to;
                }
            }
            break;
        case 1:
            grid->EmptySelection();
            model.selected.reset();
            break;
        case 2:
            model.multi = random() % 3 != 0;
            grid->SetMultiSelect(model.multi, false);
            break;
        case 3:
            model.rowSelect = random() % 2 == 0;
            setMode(model.rowSelect ? 0 : static_cast<int>(random() % 4));
            break;
        default:
            grid->SetFixedRowCount(static_cast<USHORT>(model.fixedRows = static_cast<int>(random() % 3)));
            grid->SetFixedColCount(static_cast<USHORT>(model.fixedCols = static_cast<int>(random() % 2)));
            model.current = Cell{model.fixedCols, model.fixedRows};
            model.select(*model.current, *model.current);
            break;
        }
    }
    void setMode(int mode)
    {
        // A selection of whole rows has no text-like form, nor the other way round.
        grid->SetRowSelect(model.rowSelect);
        grid->SetSelectionMode(static_cast<BYTE>(model.mode = mode));
        grid->EmptySelection();
        model.selected.reset();
    }
    testing::AssertionResult isAsInTheModel()
    {
        std::string seen;
        std::string expected;
        for (int row = 0; row < Model::rows; ++row)
        {
            for (int col = 0; col < Model::cols; ++col)
            {
                seen += grid->IsCellSelected(static_cast<USHORT>(row), static_cast<USHORT>(col)) ? 'x' : '.';
                expected += model.isSelected({col, row}) ? 'x' : '.';
            }
            seen += ' ';
            expected += ' ';
        }
        seen += current();
        expected += model.current ? std::to_string(model.current->col) + ',' + std::to_string(model.current->row)
                                  : std::string("none");
        return seen == expected ? testing::AssertionSuccess()
                                : testing::AssertionFailure() << seen << " instead of " << expected;
    }

    Model model;
    std::mt19937 random;
};

TEST_F(GridInputModel, tapsSweepsAndKeysDoAsInTheModel)
{
    for (unsigned seed = 1; seed <= 8; ++seed)
    {
        random.seed(seed);
        model = {};
        makePlain(Model::rows, Model::cols);
        grid->SetAllowAutoScroll(false);
        settle();
        for (int step = 0; step < 150; ++step)
        {
            notified.clear();
            const unsigned kind = random() % 10;
            kind < 4 ? tapStep() : kind < 6 ? sweepStep() : kind < 9 ? keyStep() : callStep();
            tick(84); // two taps are never a double one
            ASSERT_TRUE(isAsInTheModel()) << "seed " << seed << " step " << step << " kind " << kind;
            ASSERT_FALSE(HasFailure()) << "seed " << seed << " step " << step << " kind " << kind;
        }
    }
}
} // namespace
} // namespace zb::test
