#include "tests/lifetime/Order.h"

namespace OvMemTest {

namespace {

std::string inWords(const Event& event) {
    const std::string connection = std::to_string(event.connection);
    switch (event.kind) {
        case Event::Create:
            return "create " + connection;
        case Event::Copy:
            return "copy " + std::to_string(event.source) + " to " + connection;
        case Event::Assign:
            return "assign " + std::to_string(event.source) + " to " +
                   connection;
        case Event::Use:
            return "use " + connection;
        case Event::EndGuard:
            return "end the guard";
        case Event::Destroy:
            break;
    }
    return "destroy " + connection;
}

// Goes through all orders, one event at a time.
class Search {
public:
    Search(std::size_t connections, bool withAnAssignment)
        : stages(connections, Absent), assignmentToCome(withAnAssignment) {}

    std::vector<Order> run() {
        goOn();
        return found;
    }

private:
    enum Stage { Absent, New, Used, Gone };

    static bool isAlive(Stage stage) { return stage == New || stage == Used; }

    void goOn() {
        bool over = !assignmentToCome;
        bool mayBegin = true;
        for (std::size_t i = 0; i < stages.size(); ++i) {
            over = over && stages[i] == Gone;
            if (isAlive(stages[i])) {
                live(i);
            } else if (stages[i] == Absent && mayBegin) {
                begin(i);
                mayBegin = false;
            }
        }
        if (over) {
            found.push_back(order);
        }
    }

    void begin(std::size_t i) {
        goThrough({Event::Create, i}, New);
        for (std::size_t source = 0; source < i; ++source) {
            if (isAlive(stages[source])) {
                goThrough({Event::Copy, i, source}, New);
            }
        }
    }

    void live(std::size_t i) {
        if (stages[i] == New) {
            goThrough({Event::Use, i}, Used);
        }
        goThrough({Event::Destroy, i}, Gone);
        if (assignmentToCome) {
            assignmentToCome = false;
            for (std::size_t source = 0; source < stages.size(); ++source) {
                if (source != i && isAlive(stages[source])) {
                    goThrough({Event::Assign, i, source}, New);
                }
            }
            assignmentToCome = true;
        }
    }

    void goThrough(const Event& event, Stage after) {
        const Stage before = stages[event.connection];
        stages[event.connection] = after;
        order.push_back(event);
        goOn();
        order.pop_back();
        stages[event.connection] = before;
    }

    std::vector<Stage> stages;
    bool assignmentToCome;
    Order order;
    std::vector<Order> found;
};

}  // namespace

std::string inWords(const Order& order) {
    std::string words;
    for (const Event& event : order) {
        words += (words.empty() ? "" : ", ") + inWords(event);
    }
    return words;
}

std::vector<Order> allOrders() {
    return Search(3, false).run();
}

std::vector<Order> allOrdersWithAnAssignment() {
    return Search(2, true).run();
}

std::vector<Order> allOrdersWithTheEndOfTheGuard() {
    std::vector<Order> all;
    for (const Order& order : allOrdersWithAnAssignment()) {
        for (std::size_t before = 0; before < order.size(); ++before) {
            Order& ended = all.emplace_back(order);
            ended.insert(ended.begin() + static_cast<std::ptrdiff_t>(before),
                         {Event::EndGuard, 0});
        }
    }
    return all;
}

}  // namespace OvMemTest
