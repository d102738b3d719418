"""Lists of any length, keyboard, paper and what a screen reader is told; check-page runs it."""
from page_steps import details, element, expect, is_in_pane, is_in_window, test

# A page that is drawn as a whole has a thousand nodes or two; one of 10,000 rows would have a hundred times that.
MOST_NODES = 4000


def measure(page, name, search):
    """Tells how long it takes to draw and to search, which only a hung page fails, and counts the nodes."""
    drawn = page.driver.execute_async_script("""const done = arguments[0];
        const look = () => performance.getEntriesByName('painted').length > 0
            ? done(performance.getEntriesByName('painted')[0].startTime) : setTimeout(look, 20);
        look();""")
    searched = page.driver.execute_async_script("""const [text, done] = arguments;
        const box = document.getElementById('search');
        const start = performance.now();
        box.value = text;
        box.dispatchEvent(new Event('input'));
        requestAnimationFrame(() => setTimeout(() => done(performance.now() - start)));""", search)
    nodes = page.run("return document.querySelectorAll('*').length")
    print(f"measured: {name}: painted after {drawn:.0f} ms, searched in {searched:.0f} ms, {nodes} nodes")
    assert nodes < MOST_NODES, f"{nodes} nodes"


def row_at_the_top(page, pane):
    """The first row that is wholly in sight: its number and its place."""
    return page.run("""const pane = document.querySelector(arguments[0]).getBoundingClientRect();
        const row = [...document.querySelectorAll(arguments[0] + ' .element')]
            .find((node) => node.getBoundingClientRect().top >= pane.top);
        return [Number(row.id.slice(8)), row.getBoundingClientRect().top - pane.top];""", pane)


@test("large")
def ten_thousand_elements_are_drawn_and_searched(page):
    assert "Loads eclipse.so, as daemon" in page.text("h1")
    assert "(10,000)" in page.text(".results h3")
    measure(page, "explain, 10,000 elements", "number=77")
    expect(page.text("#found"), "111 of 10,000 arguments, 111 of 10,001 lines")
    expect(page.seen(".element")[0].get_attribute("id"), "element-76")
    page.open("#element-8999")
    source = page.one(".sources .is-source")
    page.settle()
    assert is_in_pane(page, source) and is_in_pane(page, element(page, 8999))
    drawn = len(page.all(".picture .lines path"))
    assert 1 <= drawn < 200, f"{drawn} lines are drawn"
    page.shoot("explain-large")


@test("large")
def every_row_of_a_long_list_can_be_scrolled_to(page):
    page.run("document.querySelector('.results').scrollIntoView()")
    before = row_at_the_top(page, ".results .scroll")[0]
    for _ in range(20):
        page.run("document.querySelector('.results .scroll').scrollTop += 400")
        page.settle()
        now, place = row_at_the_top(page, ".results .scroll")
        assert before < now <= before + 14, f"{now} after {before}"
        assert place < 250, f"a gap of {place}"
        before = now
    page.run("const pane = document.querySelector('.results .scroll'); pane.scrollTop = pane.scrollHeight")
    page.settle()
    assert is_in_pane(page, element(page, 9999))


@test("large")
def what_a_link_leads_to_is_not_below_the_search_box(page):
    for width in (380, 1280, 1920):
        page.width(width)
        page.open("#element-5000")
        page.settle()
        seen = page.run("""const box = arguments[0].getBoundingClientRect();
            return arguments[0].contains(document.elementFromPoint(box.left + 9, box.top + 3));""", element(page, 5000))
        assert seen, f"hidden at {width}"


@test("large")
def what_is_in_sight_stays_where_it_is(page):
    page.run("document.querySelector('.results').scrollIntoView()")
    page.run("document.querySelector('.results .scroll').scrollTop = 150000")
    page.settle()
    for _ in range(10):
        number, place = row_at_the_top(page, ".results .scroll")
        page.run("document.querySelector('.results .scroll').scrollTop -= 300")
        page.settle()
        moved = page.run("""return document.getElementById('element-' + arguments[0]).getBoundingClientRect().top
            - document.querySelector('.results .scroll').getBoundingClientRect().top""", number)
        assert abs(moved - place - 300) < 3, f"{moved - place} instead of 300"


@test("large")
def long_lists_work_by_keyboard(page):
    keys = page.keys
    page.press("/")
    page.one("#search").send_keys("number=9", keys.ENTER)
    expect(page.run("return document.activeElement.parentNode.id"), "element-8")
    page.press(keys.END)
    expect(page.run("return document.activeElement.parentNode.id"), "element-9998")
    assert is_in_pane(page, page.driver.switch_to.active_element)
    page.press(keys.ARROW_UP, keys.PAGE_UP, keys.ARROW_DOWN)
    expect(page.run("return document.activeElement.parentNode.id"), "element-9988")
    page.press(keys.ENTER)
    assert details(page, 9988).is_displayed()
    page.press(keys.ESCAPE)
    assert not details(page, 9988).is_displayed()
    page.press("/")
    page.press(keys.ESCAPE)
    expect(page.text("#found"), "")
    page.press(keys.ARROW_DOWN)
    expect(page.run("return document.activeElement.parentNode.id"), "element-0")


@test("large")
def what_has_the_focus_stays_however_far_one_scrolls(page):
    element(page, 3).click()
    page.run("document.querySelector('.results .scroll').scrollTop = 100000")
    page.settle()
    assert page.all("#element-3") and not page.all("#element-60")
    page.press(page.keys.ARROW_DOWN)
    expect(page.run("return document.activeElement.parentNode.id"), "element-4")
    assert is_in_pane(page, element(page, 4))


@test("large")
def a_closed_file_has_no_lines_and_opens_for_what_comes_from_it(page):
    page.one("#file-1 button").click()
    expect(page.all(".sources .entry"), page.all(".sources .entry:last-child"))
    expect(page.one("#file-1 button").get_attribute("aria-expanded"), "false")
    page.search("number=77")
    assert len(page.all(".sources .entry")) > 10
    page.search("")
    page.one("#file-1 button").click()
    element(page, 0).click()
    expect(page.one("#file-1 button").get_attribute("aria-expanded"), "true")
    assert "-Dnumber=1" in page.text(".sources .is-source")


@test("large")
def the_browsers_search_gives_way_to_one_that_sees_everything(page):
    page.run("window.keys = []; addEventListener('keydown', (event) => keys.push(event.defaultPrevented))")
    page.one("body").send_keys(page.keys.CONTROL, "f")
    expect(page.driver.switch_to.active_element.get_attribute("id"), "search")
    assert "sees what is in view" in page.text("#found")
    page.press(page.keys.CONTROL, "f")
    expect([page.run("return keys")[index] for index in (1, 3)], [True, False])


@test("explanation")
def a_page_that_is_there_as_a_whole_leaves_searching_to_the_browser(page):
    page.run("window.keys = []; addEventListener('keydown', (event) => keys.push(event.defaultPrevented))")
    page.one("body").send_keys(page.keys.CONTROL, "f")
    expect(page.run("return keys"), [False, False])


def printed(page, selector):
    """The texts of what matches while the page is printed."""
    page.run("""window.printed = null; addEventListener('beforeprint', () => {
        window.printed = [...document.querySelectorAll(arguments[0])].map((node) => node.textContent); });""", selector)
    page.driver.execute_cdp_cmd("Page.printToPDF", {})
    return page.run("return window.printed")


@test("large")
def paper_says_what_it_has_not(page):
    texts = printed(page, ".results .element, .results .unprinted")
    expect(len(texts), 2001)
    assert "-Dnumber=2000vmarg entries by name" in texts[1999].replace("jvm.properties:2000Why", ""), texts[1999]
    assert "8,000 more, which are not printed" in texts[2000], texts[2000]
    assert len(page.all(".element")) < 200
    page.search("number=77")
    expect(len(printed(page, ".results .element, .results .unprinted")), 111)


@test("computed")
def many_arguments_of_one_source_leave_its_text_readable(page):
    page.width(1280)
    page.search("")
    row = page.all(".sources .entry")[-1]
    assert row.find_element(page.By.CSS_SELECTOR, ".content").size["width"] > 200
    expect(len(row.find_elements(page.By.CSS_SELECTOR, ".users .jump:not(.more)")), 12)
    more = row.find_element(page.By.CSS_SELECTOR, ".more")
    expect(more.text, "… and 488 more")
    more.click()
    expect(len(row.find_elements(page.By.CSS_SELECTOR, ".users .jump:not(.more)")), 132)
    page.open("#element-499")
    expect(len(page.all("#details-499 .loser")), 20)
    assert "… and 480 more" in details(page, 499).text


@test("explanation")
def lines_break_behind_slashes_rather_than_in_names(page):
    for width in (380, 1280):
        page.width(width)
        page.settle()
        broken = page.run("""const broken = [];
            for (const node of document.querySelectorAll('.facts dd, .results .text, .outcome code')) {
                if (node.textContent.includes('/')) {
                    for (const part of node.childNodes) {
                        const range = document.createRange();
                        range.selectNode(part);
                        if (part.textContent.length < 20 && !/\\s/.test(part.textContent)
                                && new Set([...range.getClientRects()].map((box) => box.top)).size > 1) {
                            broken.push(part.textContent);
                        }
                    }
                }
            }
            return broken;""")
        expect(broken, [])


@test("explanation")
def what_is_found_comes_into_view_and_counts_are_told_apart(page):
    expect([link.text for link in page.seen("#contents a")][:2], ["Outcome", "Arguments (17)"])
    page.search("SAMPLE_REMOVED")
    assert is_in_window(page, page.one("#environment .row"))
    page.search("")
    expect(len(page.seen("section")), len(page.all("section")))
    page.width(380, 700)
    page.search("heap")
    assert is_in_window(page, element(page, 11))


def spoken(page):
    """What a screen reader is told: role and name of everything in the page."""
    page.driver.execute_cdp_cmd("Accessibility.enable", {})
    nodes = page.driver.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]
    return [(node["role"]["value"], node.get("name", {}).get("value", ""),
             {one["name"]: one["value"].get("value") for one in node.get("properties", [])})
            for node in nodes if not node["ignored"]]


@test("explanation")
def a_screen_reader_is_told_what_everything_is(page):
    element(page, 11).click()
    told = spoken(page)
    names = {(role, name) for role, name, _ in told}
    for wanted in (("navigation", "Contents"), ("searchbox", "Search"), ("list", "Final arguments"),
                   ("list", "Sources"), ("list", "Log records"), ("group", "Final arguments"),
                   ("heading", "The way of the launch"), ("region", "Environment")):
        assert wanted in names, f"{wanted} is not told"
    assert any(role == "main" for role, _ in names)
    expect([name for role, name, _ in told if role in ("button", "link", "searchbox") and not name.strip()], [])
    expanded = [name for role, name, facts in told if role == "button" and facts.get("expanded") is True]
    assert any("-Xmx128m" in name for name in expanded), expanded
    assert any("rcp/rcplauncher.properties" in name for name in expanded), expanded
    item = page.one("#element-11")
    expect([item.get_attribute(name) for name in ("role", "aria-posinset", "aria-setsize")], ["listitem", "12", "17"])


@test("large")
def a_screen_reader_is_told_how_long_a_list_is(page):
    expect(page.one("#element-7").get_attribute("aria-setsize"), "10000")
    lists = [name for role, name, _ in spoken(page) if role == "list"]
    assert {"Sources", "Final arguments"} <= set(lists), lists


@test("large-report")
def ten_thousand_findings_are_drawn_and_searched(page):
    measure(page, "check, 10,000 findings", "number77")
    expect(page.text("#found"), "111 of 10,000 findings")
    page.search("")
    page.open("#finding-9000")
    finding = page.one("#finding-9000")
    assert finding.is_displayed() and "number9000" in finding.text
    expect(page.driver.switch_to.active_element, finding)
    assert "10,000 findings" in page.text("#codes")
    page.shoot("check-large")


@test("many-files")
def findings_in_ten_thousand_files_are_drawn_and_searched(page):
    expect(len(page.all("#summary li")), 12)
    assert "… and 9,988 more" in page.text("#summary")
    measure(page, "check, 10,000 files", "part77")
    expect(page.text("#found"), "111 of 10,000 findings")
    expect(page.all(".card")[0].text.splitlines()[0], "rcp/plugins/part77.properties")


@test("large-difference")
def ten_thousand_differences_are_drawn_and_searched(page):
    measure(page, "diff, 10,000 files", "part77")
    expect(page.text("#found"), "111 of 10,000 files")
    page.search("")
    page.run("scrollTo(0, document.documentElement.scrollHeight / 2)")
    page.settle()
    page.search("part77")
    assert is_in_window(page, page.one("#files .row"))
    page.search("")
    page.one("#contents").find_element(page.By.PARTIAL_LINK_TEXT, "Findings").click()
    page.settle()
    assert "nothing looks at" in page.text("#findings")
    page.run("document.querySelector('#files .row').focus()")
    page.press(page.keys.END)
    assert "part10000.jar" in page.driver.switch_to.active_element.text
