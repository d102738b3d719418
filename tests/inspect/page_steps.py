"""What the tests of the pages of rcpinspect share."""
TESTS = []  # (name, page, function)


def test(page):
    def add(function):
        TESTS.append((function.__name__.replace("_", " "), page, function))
        return function
    return add


def element(page, number):
    return page.one(f"#element-{number} .head")


def details(page, number):
    return page.one(f"#details-{number}")


def expect(actual, wanted):
    assert actual == wanted, f"{actual!r} instead of {wanted!r}"


def is_in_pane(page, node):
    return page.run("""const pane = arguments[0].closest('.scroll').getBoundingClientRect();
        const box = arguments[0].getBoundingClientRect();
        return box.top >= pane.top && box.bottom <= pane.bottom;""", node)


def is_in_window(page, node):
    return page.run("""const box = arguments[0].getBoundingClientRect();
        return box.top >= 0 && box.bottom <= innerHeight && arguments[0].contains(
            document.elementFromPoint(box.left + 9, box.top + 9));""", node)
